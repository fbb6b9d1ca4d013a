#pragma once

#include "account/CreditJournal.h"
#include "copygen/CloudAIService.h"
#include "studio/copy/CopyOutcome.h"

class AccountSession;

// The copy of one image from the cloud.
struct CloudCopyOrder {
    QUrl photo;
    QString objective;
    SocialFormat format = SocialFormat::storyReel;
    std::stop_token stop = {};
};

// All outlive the task that uses them.
struct CloudCopyServices {
    AccountSession* account = nullptr;
    CreditJournal* journal = nullptr;
    CloudAIService writer = {};

    bool isComplete() const { return account && journal && writer.api; }
};

// What the caller learns and does while the copy is written.
struct CloudCopySteps {
    std::function<void(const QString& sentence)> working;
    // Whether the copy can still be used when it comes; else its credits are given back.
    std::function<bool()> isWanted;
    // Stores the copy and calls `strike` in one transaction, now or as soon as that can be done.
    // Returns whether both are done now.
    std::function<bool(const GeneratedCopy& copy, const Strike& strike)> record;
};

struct CloudCopyResult {
    enum class State {
        written,
        cancelled,     // by the order's stop; nothing was charged
        unwanted,      // nothing was charged
        failed,        // nothing was charged
        impossible,    // nothing was charged, and every other image would fail alike
    };
    State state = State::failed;
    GeneratedCopy copy = {};
    qint64 cost = 0;        // credits that were charged
    QString reason = {};    // sentence for the user
    CopyOutcome::Remedy remedy = CopyOutcome::Remedy::none;
};

// Why no copy can come from the cloud now; empty when it can.
QString whyNoCloudCopy(const AccountSession* account);

// Reserves the configured price under a fresh identifier, has the service write the copy, and
// either has it recorded or gives the credits back.
QCoro::Task<CloudCopyResult> writeCloudCopy(CloudCopyOrder order, CloudCopyServices services,
                                            CloudCopySteps steps);
