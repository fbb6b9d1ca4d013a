#pragma once
#include "model/PublicationItem.h"
#include "model/SocialFormat.h"
#include "model/SocialPublishNetwork.h"
#include "studio/publish/PublishChecks.h"

class StudioPublish;

// A post that the user has pressed to publish before all its checks were made, as he saw it.
class PressedPost {
public:
    explicit PressedPost(const StudioPublish& shown);
    // Why the user must press again, now that the checks are made; empty if he need not.
    QString refusal(const StudioPublish& now) const;

private:
    // What is published.
    struct Post {
        SocialPublishNetwork network = SocialPublishNetwork::instagram;
        SocialPublishPlacement placement = SocialPublishPlacement::feed;
        QString caption;
        QList<PublicationItem> items;
        SocialFormat format = SocialFormat::carouselPortrait;
        bool operator==(const Post&) const = default;
    };
    static Post postOf(const StudioPublish& publish);

    Post m_post;
    QList<PublishCheck> m_seen;
};
