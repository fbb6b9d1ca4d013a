#include "platform/photo/ImageAccess.h"
#include "tests/platform/photo/PhotoSamples.h"

#include <QStringList>

#include <stdexcept>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

ImageAccess::SecurityScope logging(QStringList& log, bool starts)
{
    return {[&log, starts](const QUrl&) {
                log.append(u"start"_qs);
                return starts;
            },
            [&log](const QUrl&) { log.append(u"stop"_qs); }};
}

}    // namespace

TEST(ImageAccess, accessIsStoppedAfterTheWorkAndAlsoWhenItFails)
{
    QStringList log;
    const auto scope = logging(log, true);
    const int result = ImageAccess::withSecurityScope(
        QUrl(),
        [&] {
            log.append(u"work"_qs);
            return 7;
        },
        scope);
    EXPECT_EQ(result, 7);
    const auto failing = []() -> int { throw std::runtime_error("unreadable"); };
    EXPECT_THROW(ImageAccess::withSecurityScope(QUrl(), failing, scope), std::runtime_error);
    EXPECT_EQ(log.join(u' '), u"start work stop start stop"_qs);
}

TEST(ImageAccess, whatDidNotStartIsTriedAndNotStopped)
{
    QStringList log;
    ImageAccess::withSecurityScope(
        QUrl(), [&] { log.append(u"work"_qs); }, logging(log, false));
    EXPECT_EQ(log.join(u' '), u"start work"_qs);
}

TEST(ImageAccess, abookmarkThatLeadsNowhereFallsBackToTheAddress)
{
    const QTemporaryDir folder;
    const QString file = written(folder, u"a.jpg"_qs, encoded(quarters({40, 30}), "jpeg"));
    PhotoCache cache(folder.filePath(u"cache"_qs));
    const QUrl url = QUrl::fromLocalFile(file);
    EXPECT_EQ(ImageAccess::resolvedURL(url, QByteArray("stale")), url);
    EXPECT_TRUE(ImageAccess::image(url, QByteArray("stale"), cache));
    EXPECT_FALSE(ImageAccess::image(QUrl(u"https://example.org/a.jpg"_qs), {}, cache));
    EXPECT_FALSE(
        ImageAccess::image(QUrl::fromLocalFile(folder.filePath(u"none.jpg"_qs)), {}, cache));
}
