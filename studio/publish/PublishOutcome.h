#pragma once

#include "studio/export/RenderCharge.h"
#include "studio/publish/PublishChecks.h"

// How a publication ended, for the status line.
struct PublishOutcome : Charge {
    enum class State {
        done,
        notPrepared,    // an image could not be rendered, or stored until it is sent
        unconfirmed,    // the user must know of `found` first; what was charged is refunded
        tooFewCredits,
        notReserved,
        failed,     // nothing was published
        unknown,    // the post may have been published
        stopped,
    };

    State state = State::done;
    SocialPublishNetwork network = SocialPublishNetwork::instagram;
    SocialPublishPlacement placement = SocialPublishPlacement::feed;
    qsizetype images = 0;
    std::optional<QUrl> url;      // of the post
    QList<PublishCheck> found;    // warnings first

    bool isDone() const { return state == State::done; }
    bool isShortOfCredits() const
    {
        return state == State::tooFewCredits || refusal == ChargeResult::Refusal::tooFewCredits;
    }
    QString sentence() const;    // for the user
};
