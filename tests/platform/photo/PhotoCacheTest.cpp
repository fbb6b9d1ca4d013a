#include "platform/photo/PhotoCache.h"
#include "platform/Workers.h"
#include "tests/platform/photo/PhotoSamples.h"

#include <QDateTime>
#include <QDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

class PhotoCacheTest : public testing::Test {
protected:
    QString photo(const QString& name, QSize size = {640, 480}, const char* format = "jpeg")
    {
        return written(m_folder, name, encoded(quarters(size), format));
    }
    PhotoId id(const QString& name, QSize size = {640, 480})
    {
        const QString file = photo(name, size);
        return {file, acceptPhoto(file)->digest};
    }
    QFileInfoList stored() const { return QDir(m_disk).entryInfoList(QDir::Files); }

    QTemporaryDir m_folder;
    QString m_disk = m_folder.filePath(u"thumbnails"_qs);
};

TEST_F(PhotoCacheTest, theSecondRunAnswersFromDiskWithoutTheCodec)
{
    const QString file = photo(u"a.jpg"_qs);
    const QDateTime time = QDateTime::fromSecsSinceEpoch(1'700'000'000);
    // Overwrites the first bytes of the photo without changing its size or inode. With "garbage"
    // there, only the thumbnail on disk can give an answer.
    const auto rewrite = [&](const QByteArray& start, const QDateTime& modified) {
        QFile changed(file);
        return changed.open(QIODevice::ReadWrite) && changed.write(start) == start.size() &&
               changed.flush() && changed.setFileTime(modified, QFile::FileModificationTime);
    };
    ASSERT_TRUE(rewrite("\xFF\xD8", time));
    const auto first = PhotoCache(m_disk).accept(file);
    ASSERT_TRUE(first);

    ASSERT_TRUE(rewrite("garbage", time));
    PhotoCache cache(m_disk);
    const auto second = cache.accept(file);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->info, first->info);
    EXPECT_EQ(second->digest, first->digest);
    EXPECT_LT(meanDifference(second->thumbnail, first->thumbnail), 3);
    EXPECT_FALSE(cache.anyProxy({file, first->digest}).isNull());

    ASSERT_TRUE(rewrite("garbage", time.addSecs(1)));
    EXPECT_FALSE(cache.accept(file)) << "a photo changed on disk is another photo";
}

TEST_F(PhotoCacheTest, anIdentifiedPhotoIsKnownInTheNextRunButHasNoThumbnailYet)
{
    const QString file = photo(u"a.jpg"_qs);
    const auto first = PhotoCache(m_disk).identify(file);
    ASSERT_TRUE(first);
    EXPECT_TRUE(first->thumbnail.isNull());

    const QString kept = stored().value(0).filePath();
    PhotoCache second(m_disk);
    const auto known = second.identify(file);
    ASSERT_TRUE(known);
    EXPECT_EQ(known->info, first->info);
    EXPECT_EQ(known->digest, first->digest);
    EXPECT_FALSE(second.thumbnail({file, first->digest}).isNull()) << "made when it is asked for";

    // The facts answer, not the photo: another digest in their place is believed.
    ThumbnailStore(m_disk).save(kept, {first->info, QByteArray(32, 'x'), {}});
    EXPECT_EQ(PhotoCache(m_disk).identify(file)->digest, QByteArray(32, 'x'));
}

TEST_F(PhotoCacheTest, aDamagedThumbnailIsMadeAgain)
{
    const QString file = photo(u"a.jpg"_qs);
    ASSERT_TRUE(PhotoCache(m_disk).accept(file));
    QFile thumbnail(stored().first().filePath());
    const qint64 size = thumbnail.size();
    ASSERT_TRUE(thumbnail.resize(size / 2));
    const auto again = PhotoCache(m_disk).accept(file);
    ASSERT_TRUE(again);
    EXPECT_LT(meanDifference(again->thumbnail, quarters({427, 320})), 6);
    ASSERT_EQ(stored().size(), 1);
    EXPECT_EQ(stored().first().size(), size);
}

TEST_F(PhotoCacheTest, transparencyOutlivesTheDisk)
{
    QImage clear(50, 40, QImage::Format_ARGB32);
    clear.fill(QColor(255, 0, 0, 100));
    const QString file = written(m_folder, u"a.png"_qs, encoded(clear, "png"));
    ASSERT_TRUE(PhotoCache(m_disk).accept(file));
    const auto again = PhotoCache(m_disk).accept(file);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->thumbnail.pixelColor(9, 9).alpha(), 100);
}

TEST_F(PhotoCacheTest, whatWasUsedLongestAgoGoesFirst)
{
    const qint64 oneProxy = qint64(640) * 480 * 4;
    PhotoCache cache(m_disk, 2 * oneProxy + 10'000);
    const PhotoId a = id(u"a.jpg"_qs), b = id(u"b.jpg"_qs), c = id(u"c.jpg"_qs);
    EXPECT_TRUE(cache.cachedProxy(a, PhotoLevel::full).isNull());
    cache.proxy(a, PhotoLevel::full);
    cache.proxy(b, PhotoLevel::full);
    // This use of `a` makes `b` the one unused for longest.
    EXPECT_FALSE(cache.cachedProxy(a, PhotoLevel::full).isNull());
    cache.proxy(c, PhotoLevel::full);
    EXPECT_FALSE(cache.cachedProxy(a, PhotoLevel::full).isNull());
    EXPECT_TRUE(cache.cachedProxy(b, PhotoLevel::full).isNull());
    EXPECT_FALSE(cache.cachedProxy(c, PhotoLevel::full).isNull());
}

TEST_F(PhotoCacheTest, anyProxyIsTheFinestAtHand)
{
    PhotoCache cache(m_disk);
    const QString file = photo(u"a.jpg"_qs);
    const PhotoId known{file, cache.accept(file)->digest};
    EXPECT_EQ(cache.anyProxy(known).size(), QSize(427, 320));
    cache.proxy(known, PhotoLevel::eighth);
    cache.proxy(known, PhotoLevel::half);
    EXPECT_EQ(cache.anyProxy(known).size(), QSize(320, 240));
    EXPECT_TRUE(cache.cachedProxy(known, PhotoLevel::quarter).isNull());
    EXPECT_TRUE(cache.anyProxy({file, "another content"}).isNull());
}

TEST_F(PhotoCacheTest, twoCallersOfOnePhotoShareOneDecoding)
{
    PhotoCache cache(m_disk);
    const PhotoId large = id(u"a.jpg"_qs, {3000, 2000});
    QList<QFuture<QImage>> callers;
    for (int i = 0; i < 2; ++i)
        callers.append(runOnWorker([&] { return cache.proxy(large, PhotoLevel::full); }));
    EXPECT_EQ(callers[0].result().cacheKey(), callers[1].result().cacheKey());
    const PhotoId missing{m_folder.filePath(u"none.jpg"_qs), "x"};
    EXPECT_TRUE(cache.proxy(missing, PhotoLevel::full).isNull());
    EXPECT_TRUE(cache.thumbnail(missing).isNull());
}

TEST_F(PhotoCacheTest, theDiskKeepsTheNewestWithinItsBudget)
{
    QDir().mkpath(m_disk);
    const QDateTime now = QDateTime::currentDateTime();
    for (int i = 0; i < 4; ++i) {
        QFile file(m_disk + u"/%1.thumbnail"_qs.arg(i));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(i % 2 ? 10 : 5000, 'x'));    // at least a block of the disk each
        file.flush();
        file.setFileTime(now.addSecs(qint64(-100) * i), QFile::FileModificationTime);
    }
    QFile unfinished(m_disk + u"/.moltiva-crashed"_qs);
    ASSERT_TRUE(unfinished.open(QIODevice::WriteOnly));
    ASSERT_TRUE(unfinished.setFileTime(now.addDays(-1), QFile::FileModificationTime));
    pruneThumbnails(m_disk, 10'000);
    EXPECT_FALSE(unfinished.exists());
    QStringList left;
    for (const QFileInfo& info : stored())
        left.append(info.completeBaseName());
    EXPECT_EQ(left.join(u' '), u"0 1"_qs);
}

TEST_F(PhotoCacheTest, anotherPictureUnderTheSameNameIsAMissingPhoto)
{
    PhotoCache cache(m_disk);
    const PhotoId accepted = id(u"a.jpg"_qs);
    photo(u"a.jpg"_qs, {300, 900});
    EXPECT_TRUE(cache.proxy(accepted, PhotoLevel::half).isNull());
    EXPECT_TRUE(cache.thumbnail(accepted).isNull());
    EXPECT_TRUE(cache.anyProxy(accepted).isNull()) << "kept under the digest of the former one";
    EXPECT_FALSE(decodePhoto(accepted.path, PhotoLevel::full, accepted.digest));
    EXPECT_TRUE(decodePhoto(accepted.path, PhotoLevel::full));
}

TEST_F(PhotoCacheTest, aPictureTooLargeToKeepIsKeptSmallerAndNotDecodedAnew)
{
    const qint64 whole = qint64(640) * 480 * 4;
    const QString file = photo(u"a.png"_qs, {640, 480}, "png");
    const PhotoId png{file, acceptPhoto(file)->digest};
    PhotoCache cache(m_disk, whole);
    EXPECT_EQ(cache.proxy(png, PhotoLevel::quarter).size(), QSize(160, 120));
    EXPECT_EQ(cache.cachedProxy(png, PhotoLevel::quarter).size(), QSize(160, 120));
    // The full level exceeds the whole budget, so the proxy is smaller than that level.
    EXPECT_LT(meanDifference(cache.proxy(png, PhotoLevel::full), quarters({320, 240})), 1);
    EXPECT_FALSE(cache.cachedProxy(png, PhotoLevel::full).isNull());

    PhotoCache roomy(m_disk, 2 * whole + 10'000);
    EXPECT_EQ(roomy.proxy(png, PhotoLevel::quarter).size(), QSize(640, 480));
}
