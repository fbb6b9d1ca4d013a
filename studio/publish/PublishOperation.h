#pragma once

#include "account/AccountAPI.h"
#include "studio/publish/PublishOutcome.h"

#include <QCoroTask>

#include <functional>
#include <memory>
#include <stop_token>

class PhotoCache;
class PreferencesStore;
class StagingFolder;

// How far a publication is.
struct PublishProgress {
    // waiting: for the answer. asking: until the service knows whether an earlier attempt
    // succeeded.
    enum class Stage { rendering, charging, sending, waiting, asking };

    Stage stage = Stage::rendering;
    qint64 done = 0, total = 0;    // images while rendering, bytes while sending
    bool canStop = true;           // not any more once the last byte has left
    bool operator==(const PublishProgress&) const = default;
};

// Sends a request to publish, as AccountAPI::publishSocialPost() does.
using SendPost = std::function<QCoro::Task<SocialPublishResponse>(
    const QString& request, SentBytes sentBytes, std::stop_token stop)>;

struct PublishRequest {
    PublicationItems items;
    SocialFormat format = SocialFormat::carouselPortrait;
    OutputSize outputSize = exportSizeOf;
    SocialPublishNetwork network = SocialPublishNetwork::instagram;
    SocialPublishPlacement placement = SocialPublishPlacement::feed;
    QString caption;
    std::optional<qint64> price;    // the price shown to the user, in credits; empty: unknown
};

struct PublishServices {
    std::shared_ptr<PhotoCache> photos;
    QString stagingPlace;    // folder for rendered pictures until they are sent
    ChargeServices charge;
    std::shared_ptr<PublishRecords> records;    // of the account that pays
    SendPost send;
    qint64 largestPost = 100'000'000;    // bytes of a request that the web site takes
    std::chrono::milliseconds timeLimit = std::chrono::seconds(260);    // of sending
    PreferencesStore* preferences = nullptr;    // hold the rate of sending; outlive the publication
    // Pause before the service is asked again for the outcome of an earlier attempt.
    std::chrono::milliseconds pause = std::chrono::seconds(4);
    std::function<QDateTime()> now = &QDateTime::currentDateTimeUtc;
};

// Shared by a publication and its caller, who requests the stop. All functions may be empty.
// Whoever ends without waiting for the publication resets `staging`.
struct PublishControl {
    std::stop_source stop;
    std::function<void(const PublishProgress&)> progressed;
    std::function<void(const QString& sentence)> working;    // a step begins
    // Whether the user wants to publish in spite of what the checks of the rendered images have
    // found. Empty: no.
    std::function<bool(const QList<PublishCheck>& found)> confirms;
    std::shared_ptr<StagingFolder> staging;    // null before and after the publication
};

// Sends requests through `api`, which may be destroyed while one is under way.
SendPost sendThrough(AccountAPI* api);

// How long after an attempt whose outcome is unknown another one for the same post asks for it
// instead of making a second post.
inline constexpr std::chrono::minutes sameAttempt{5};

// Whether publishing the renders and the caption at `now` is another attempt at the post of
// `earlier`: it repeats the request, which the service obeys only once.
bool isSameAttempt(const PublishRecord& earlier, const QStringList& renders, const QString& caption,
                   const QDateTime& now);

// Renders the items, charges for the unpaid ones, and publishes them as one post. If that fails,
// refunds the whole charge. A record of the attempt is stored before the request leaves.
QCoro::Task<PublishOutcome> runPublish(PublishRequest request, PublishServices services,
                                       std::shared_ptr<PublishControl> control);
