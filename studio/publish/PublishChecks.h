#pragma once

#include "canvas/TextWarnings.h"
#include "model/PublicationItem.h"
#include "model/SocialFormat.h"
#include "model/SocialPublishNetwork.h"
#include "studio/export/RenderedOutput.h"
#include "studio/publish/PublishRecords.h"

#include <QHash>

#include <chrono>
#include <optional>

// What is told about a post before it is sent. A note leaves nothing to mend.
enum class PublishCheckKind {
    placeholder,      // a visible text or the caption was never written
    missingAnswer,    // a text is the record of a model that did not answer
    format,           // the shape of the images does not suit the placement
    captionLength,
    tags,            // more hashtags or mentions than the network takes
    manyHashtags,    // a note
    imageBytes,      // an image is larger than the network takes
    requestBytes,    // the whole post is larger than the service takes
    requestTime,     // the post cannot be sent within the time limit of a request
    published,       // the same renders were already sent there
    safeZone,        // a text of a story is where the network's buttons are
    overflow,        // a text does not fit its box
    glyphs,          // a text has characters that no font has
    contrast,
};

struct PublishCheck {
    PublishCheckKind kind = PublishCheckKind::placeholder;
    bool isWarning = true;          // false: a note
    QString sentence = {};          // for the user
    QUuid item = {}, layer = {};    // what it speaks of; null: the post, or the whole item
    QString link = {};              // text of the link that leads there; empty: none
    bool operator==(const PublishCheck&) const = default;
};

// A post as the checks see it.
struct PublishSubject {
    QList<PublicationItem> items;    // those that would be sent
    SocialFormat format = SocialFormat::carouselPortrait;
    SocialPublishNetwork network = SocialPublishNetwork::instagram;
    SocialPublishPlacement placement = SocialPublishPlacement::feed;
    QString caption;
    QHash<QUuid, QList<TextWarning>> warnings;    // of the items' texts, as the canvas judged them
    std::optional<PublishRecord> published;       // the newest of the same renders there
};

struct CheckedPost {
    QList<PublishCheck> found;    // warnings first
    int passed = 0;               // checks that found nothing
};

// Does not take long.
CheckedPost checkedPost(const PublishSubject& subject);

// The fingerprints of the items' renders, in order, as PublishRecord::renders has them.
QStringList fingerprintsOf(const QList<PublicationItem>& items, SocialFormat format,
                           const OutputSize& outputSize);

// The check that the same renders were already sent, or may have been.
PublishCheck checkOfPublished(const PublishRecord& earlier);

// The checks of an export: texts that were never written.
QList<PublishCheck> checksOfTexts(const PublicationItems& items);
// The same in one sentence, for the status line; empty if there is nothing to tell.
QString noticeOfExport(const PublicationItems& items);

// What is known once the images are rendered.
struct PreparedPost {
    QList<QUuid> items;
    QList<qint64> bytes;    // of each item's image as it would be sent
    qint64 requestBytes = 0;
    qint64 mostRequestBytes = 0;
    std::optional<double> rate;                // bytes a second at the last sending
    std::chrono::milliseconds timeLimit{0};    // of the request
};
QList<PublishCheck> checksOfPrepared(const PreparedPost& post, SocialPublishNetwork network);

// A hashtag or mention of a caption with its sign, in UTF-16 units.
struct CaptionTag {
    qsizetype start = 0, length = 0;
    bool operator==(const CaptionTag&) const = default;
};

// The hashtags and mentions of a caption: a sign with a letter, digit or underscore of any script
// after it, but not inside a word or an address. Neither crosses the end of a line.
QList<CaptionTag> hashtagsIn(const QString& caption);
QList<CaptionTag> mentionsIn(const QString& caption);
