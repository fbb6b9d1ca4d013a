#pragma once

#include "model/SocialFormat.h"
#include "model/SocialPublishNetwork.h"
#include "studio/StatusLog.h"
#include "studio/publish/PublishChecks.h"

#include <QByteArray>
#include <QList>
#include <QUuid>

#include <optional>

// An image of the strip below the preview.
struct PublishImage {
    QUuid id = {};
    QString name = {};
    bool isSent = true;    // false: past the limit of the network
    bool isPaid = false;
    bool hasWarning = false;
    bool operator==(const PublishImage&) const = default;
};

// `asking`: the service has not answered yet.
enum class ConnectionState { asking, unknown, connected, absent, pending };

struct NetworkShown {
    SocialPublishNetwork network = SocialPublishNetwork::instagram;
    ConnectionState state = ConnectionState::unknown;
    QString account = {};               // name of the connected account; empty: unknown
    std::optional<qint64> cost = {};    // credits; empty while unknown
    bool operator==(const NetworkShown&) const = default;
};

// An image whose caption can be taken.
struct CaptionChoice {
    QUuid item;
    QString name;
    bool operator==(const CaptionChoice&) const = default;
};

struct CaptionShown {
    QString text = {};
    qsizetype guide = 0;    // UTF-16 units; more is warned of, not refused
    bool isUnused = false;
    QString origin = {};        // says which image it came from; may be empty
    bool hasChoices = false;    // the caption of an image can be taken
    bool operator==(const CaptionShown&) const = default;
};

// What the status panel shows of a publication that is sent.
struct SendingShown {
    QString amount = {};                    // "12,4 MB de 160 MB"; may be empty
    std::optional<double> fraction = {};    // 0 to 1; empty: unknown
    bool canStop = true;
    bool canLeave = false;    // only the answer is missing: the sheet may be closed
    bool operator==(const SendingShown&) const = default;
};

struct PublishReport {
    StatusKind kind = StatusKind::note;
    QString sentence = {};
    QString cost = {};       // the line about the price
    bool isShort = false;    // the balance does not pay it
    std::optional<SendingShown> sending = {};
    bool isPublished = false;
    bool hasPage = false;    // the published post has a page that can be opened
    CheckedPost checks = {};
    bool isChecking = false;    // some checks are still being made
};

struct PublishHistoryEntry {
    QUuid id = {};
    SocialPublishNetwork network = SocialPublishNetwork::instagram;
    QString title = {}, date = {};
    QString line = {};                  // the beginning of the caption
    QString searched = {};              // all that a search looks at
    QList<QByteArray> pictures = {};    // encoded
    qsizetype more = 0;                 // images without a picture
    bool isUnknown = false;             // it may have been published
    bool hasPage = false;
    bool operator==(const PublishHistoryEntry&) const = default;
};

// What the publish sheet shows, but the pictures.
struct PublishShown {
    QList<PublishImage> images = {};    // the selected ones
    qsizetype batchSize = 0;
    SocialFormat format = SocialFormat::carouselPortrait;
    SocialPublishNetwork network = SocialPublishNetwork::instagram;
    SocialPublishPlacement placement = SocialPublishPlacement::feed;
    QList<NetworkShown> networks = {};
    qint64 balance = 0;
    QString site = {};
    QString paid = {};    // note about the images that are paid; may be empty
    CaptionShown caption = {};
    PublishReport report = {};
    bool isPublishing = false;
    bool isConfirming = false;    // the next press publishes although a check stands

    const NetworkShown* chosen() const
    {
        const auto found = std::ranges::find(networks, network, &NetworkShown::network);
        return found == networks.end() ? nullptr : &*found;
    }
    bool isStory() const { return placement == SocialPublishPlacement::story; }
};
