#include "studio/publish/PublishRecords.h"

#include "platform/PreferencesStore.h"
#include "platform/ProgramRun.h"
#include "studio/publish/PublishCaptions.h"
#include "studio/publish/SocialPublishing.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class PublishRecordsTest : public ::testing::Test {
protected:
    PublishRecords records(ProgramRun& of, const QString& account = u"local/1"_s)
    {
        return {preferences, account, of};
    }
    static PublishRecord recordAt(int minute, PublishRecord::State state)
    {
        PublishRecord record;
        record.id = QUuid::createUuid();
        record.state = state;
        record.requestId = u"r"_s;
        record.caption = u"¡Hola!\n#otoño 🍂 مرحبا"_s;
        record.images = {u"a.jpg"_s, u"b.jpg"_s};
        record.renders = {u"x"_s, u"y"_s};
        record.pictures = {"one", "two"};
        record.time = QDateTime::fromMSecsSinceEpoch(qint64(minute) * 60'000, Qt::UTC);
        record.url = QUrl(u"https://ejemplo.es/p/1"_s);
        return record;
    }

    QTemporaryDir folder;
    PreferencesStore preferences{folder.filePath(u"p.sqlite"_s)};
    ProgramRun run{folder.filePath(u"runs"_s)};
};

PublicationItem itemNamed(const QString& name, const QString& caption)
{
    PublicationItem item = PublicationItem::make(QUrl::fromLocalFile(u"/f/"_s + name), {});
    item.analysis.publicationCaption = caption;
    return item;
}

}    // namespace

TEST_F(PublishRecordsTest, PostsAreKeptByAccountNewestFirstAndFoundByTheirRenders)
{
    using State = PublishRecord::State;
    PublishRecords first = records(run);
    const PublishRecord old = recordAt(1, State::published), late = recordAt(9, State::unknown);
    EXPECT_TRUE(first.keep(late) && first.keep(old));
    EXPECT_EQ(first.all(), QList({late, old}));
    EXPECT_EQ(records(run).all(), QList({late, old})) << "as they were kept";
    EXPECT_TRUE(records(run, u"local/2"_s).all().isEmpty());

    EXPECT_EQ(first.sent({u"x"_s, u"y"_s}, late.network, late.placement)->id, late.id);
    EXPECT_EQ(first.sent({u"y"_s, u"x"_s}, late.network, late.placement)->id, late.id);
    EXPECT_EQ(first.sent({u"x"_s}, late.network, late.placement), nullptr);
    EXPECT_EQ(first.sent({u"x"_s, u"x"_s}, late.network, late.placement), nullptr);
    EXPECT_EQ(first.sent(late.renders, SocialPublishNetwork::facebook, late.placement), nullptr);
    EXPECT_EQ(first.sent(late.renders, late.network, SocialPublishPlacement::story), nullptr);

    PublishRecord story = recordAt(3, State::published);
    story.placement = SocialPublishPlacement::story;
    EXPECT_TRUE(first.keep(story));
    EXPECT_EQ(first.sent({u"z"_s, u"y"_s}, story.network, story.placement)->id, story.id)
        << "each story is a post of its own";
    EXPECT_EQ(first.sent({u"z"_s}, story.network, story.placement), nullptr);
    EXPECT_TRUE(first.remove(story.id));

    PublishRecords other = records(run);
    other.keep(recordAt(12, State::published));
    first.refresh(run);
    EXPECT_EQ(first.all(), other.all());
    EXPECT_TRUE(other.remove(other.all()[0].id) && first.remove(late.id));
    first.refresh(run);
    EXPECT_EQ(first.all(), QList{old});
    for (int i = 0; i < int(PublishRecords::mostRecords); ++i)
        first.keep(recordAt(20 + i, State::published));
    EXPECT_EQ(first.all().size(), PublishRecords::mostRecords);
    const auto again = records(run).all();
    EXPECT_EQ(again, first.all());
    EXPECT_FALSE(again.contains(old)) << "the oldest goes";
}

TEST_F(PublishRecordsTest, AnAttemptOfAnEndedRunIsInDoubtAndDamagedValuesAreDropped)
{
    using State = PublishRecord::State;
    const PublishRecord attempt = recordAt(5, State::sending);
    {
        ProgramRun other(folder.filePath(u"runs"_s));
        PublishRecords theirs = records(other);
        theirs.keep(attempt);
        EXPECT_EQ(theirs.all().value(0).state, State::sending);
        EXPECT_EQ(records(run).all().value(0).state, State::sending) << "that run is alive";
    }
    EXPECT_EQ(records(run).all().value(0).state, State::unknown);

    const QString key = preferences.keysBeginningWith(u"moltiva.publication."_s).value(0);
    const QByteArray stored = *preferences.value(key);
    const auto readAs = [&](QByteArray before, const QByteArray& after) {
        EXPECT_TRUE(before.isEmpty() || stored.contains(before)) << before.constData();
        preferences.setValue(key,
                             before.isEmpty() ? after : QByteArray(stored).replace(before, after));
        return records(run).all();
    };
    for (const QByteArray& damaged : {QByteArray("["), QByteArray("{}"), QByteArray("null"),
                                      QByteArray(600'000, ' '), stored.left(90)})
        EXPECT_TRUE(readAs({}, damaged).isEmpty());
    EXPECT_TRUE(readAs("\"instagram\"", "\"otra\"").isEmpty());
    EXPECT_TRUE(readAs(attempt.id.toByteArray(QUuid::WithoutBraces).toUpper(),
                       QUuid::createUuid().toByteArray(QUuid::WithoutBraces))
                    .isEmpty())
        << "under the key of another";
    EXPECT_EQ(readAs("\"sending\"", "\"nada\"").value(0).state, State::unknown);
    EXPECT_EQ(readAs("[\"b25l\",\"dHdv\"]", "[\"b25l\",7,\"" + QByteArray(80'000, 'A') + "\"]")
                  .value(0)
                  .pictures,
              QList<QByteArray>{"one"});
    for (const QByteArray& url :
         {QByteArray("javascript:alert(1)"), QByteArray("file:///etc/passwd"),
          QByteArray("moltiva://auth?token=x"), QByteArray("https:"), QByteArray("ejemplo.es"),
          "https://ejemplo.es/" + QByteArray(3'000, 'a')}) {
        const auto read = readAs("https://ejemplo.es/p/1", url);
        ASSERT_EQ(read.size(), 1) << url.constData();
        EXPECT_FALSE(read[0].url) << url.constData();
    }
}

TEST_F(PublishRecordsTest, EachNetworkKeepsTheCaptionThatTheUserEditedUntilItIsPublished)
{
    using enum SocialPublishNetwork;
    const PublicationItem first = itemNamed(u"picos.jpg"_s, u"Los Picos"_s);
    const PublicationItem second = itemNamed(u"valle.jpg"_s, u"El valle"_s);
    const QString typed = u"Hola 🍂\r\n#otoño‍ مرحبا \t"_s;
    {
        PublishCaptions captions(preferences);
        captions.fill(instagram, first);
        captions.fill(instagram, second);
        EXPECT_EQ(captions.text(instagram), u"Los Picos"_s) << "only what is empty is filled";
        EXPECT_EQ(captions.origin(instagram), (CaptionOrigin{first.id, u"picos"_s}));
        captions.take(facebook, second);
        captions.edit(linkedIn, typed);
        captions.fill(linkedIn, first);
        captions.take(instagram, first);
        captions.edit(instagram, typed);
        captions.take(instagram, second);
        captions.dropUnedited();
        EXPECT_EQ(captions.text(instagram), u"El valle"_s) << "it replaces an edited caption";
        captions.edit(instagram, typed);
        captions.dropUnedited();
        EXPECT_TRUE(captions.text(facebook).isEmpty());
    }
    {
        PublishCaptions captions(preferences);
        EXPECT_EQ(captions.text(instagram), typed);
        EXPECT_EQ(captions.origin(instagram), (CaptionOrigin{first.id, u"picos"_s}));
        EXPECT_EQ(captions.text(linkedIn), typed);
        EXPECT_EQ(captions.origin(linkedIn), CaptionOrigin());
        EXPECT_TRUE(captions.text(facebook).isEmpty());
        captions.clear(instagram, typed);
        captions.clear(linkedIn, u"otra cosa"_s);
        captions.edit(facebook, u"a"_s);
        captions.edit(facebook, {});
    }
    preferences.setValue(u"moltiva.publishCaption.facebook"_s, "{\"text\":7}");
    const PublishCaptions captions(preferences);
    EXPECT_TRUE(captions.text(instagram).isEmpty()) << "it was published";
    EXPECT_EQ(captions.text(linkedIn), typed) << "it was edited after it had been sent";
    EXPECT_TRUE(captions.text(facebook).isEmpty());
}

TEST(PublishCaptions, AreThoseOfTheAccount)
{
    using enum SocialPublishNetwork;
    const QTemporaryDir folder;
    PreferencesStore preferences(folder.filePath(u"p.sqlite"_s));
    PublishCaptions captions(preferences);
    captions.edit(facebook, u"De nadie"_s);
    captions.setAccount(u"ana"_s);
    EXPECT_EQ(captions.text(facebook), u"De nadie"_s) << "it was written before signing in";
    captions.edit(facebook, u"De Ana"_s);
    captions.setAccount(u"eva luna"_s);
    EXPECT_TRUE(captions.text(facebook).isEmpty());
    captions.edit(facebook, u"De Eva"_s);

    PublishCaptions later(preferences);
    EXPECT_TRUE(later.text(facebook).isEmpty()) << "it went to the first account";
    later.edit(facebook, u"De nadie"_s);
    later.setAccount(u"ana"_s);
    EXPECT_EQ(later.text(facebook), u"De Ana"_s);
    later.setAccount(u"eva luna"_s);
    EXPECT_EQ(later.text(facebook), u"De Eva"_s);
    EXPECT_EQ(PublishCaptions(preferences).text(facebook), u"De nadie"_s) << "it is not lost";
}

TEST(SocialPublishing, WhatIsSelectedIsPublishedUpToTheLimitOfTheNetwork)
{
    PublicationItems items;
    for (int i = 0; i < 12; ++i)
        items.append(itemNamed(QString::number(i), {}));
    const auto chosen = [&](const QList<int>& indices, int current, std::optional<int> limit) {
        QSet<QUuid> ids;
        for (const int index : indices)
            ids.insert(items[index].id);
        QStringList names;
        for (const auto& item : SocialPublishing::selectedItems(items, ids, current, limit))
            names.append(item.filename());
        return names.join(u' ');
    };
    EXPECT_EQ(chosen({7, 2, 11}, 0, {}), u"2 7 11"_s);
    EXPECT_EQ(chosen({7, 2, 11}, 0, 2), u"2 7"_s);
    EXPECT_EQ(chosen({7}, 0, 0), QString());
    EXPECT_EQ(chosen({7}, 0, -3), QString());
    EXPECT_EQ(chosen({}, 4, 9), u"4"_s);
    EXPECT_EQ(chosen({}, 12, {}), QString());
    EXPECT_EQ(chosen({}, -1, {}), QString());
    EXPECT_EQ(SocialPublishing::maxImageCount(u"LinkedIn"_s), 9);
    EXPECT_EQ(SocialPublishing::maxImageCount(u"instagram"_s), 10);
    EXPECT_EQ(SocialPublishing::maxImageCount(u"FACEBOOK"_s), 10);
    EXPECT_EQ(SocialPublishing::maxImageCount(u"otra"_s), 25);
}
