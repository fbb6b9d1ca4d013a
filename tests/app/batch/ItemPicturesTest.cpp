#include "app/batch/TilePictures.h"
#include "app/stage/StagePhoto.h"

#include "platform/photo/PhotoCache.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class ItemPicturesTest : public ::testing::Test {
protected:
    PublicationItem itemOf(const QString& name, QSize size)
    {
        QImage photo(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x)
                photo.setPixel(
                    x, y, qRgb(x * 255 / size.width(), y * 255 / size.height(), (x ^ y) & 255));
        }
        const QString path = m_folder.filePath(name);
        EXPECT_TRUE(photo.save(path));
        const auto accepted = m_photos->accept(path);
        EXPECT_TRUE(accepted);
        return PublicationItem::make(
            QUrl::fromLocalFile(path),
            {path, accepted->info.size, accepted->info.reducible, accepted->digest});
    }
    template <typename Pictures>
    void settle(const Pictures& pictures)
    {
        QElapsedTimer watch;
        for (watch.start(); !pictures.isIdle() && watch.elapsed() < 30000;)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        ASSERT_TRUE(pictures.isIdle());
    }

    QTemporaryDir m_folder;
    std::shared_ptr<PhotoCache> m_photos =
        std::make_shared<PhotoCache>(m_folder.filePath(u"cache"_s));
};

}    // namespace

TEST_F(ItemPicturesTest, theStageGetsThePhotoAtTheLevelOfTheExport)
{
    StagePhoto stage(m_photos);
    QList<QSize> sizes;
    QObject::connect(&stage, &StagePhoto::ready, &stage,
                     [&](const QImage& photo) { sizes.append(photo.size()); });
    PublicationItem item = itemOf(u"large.jpg"_s, {4800, 4400});
    const auto show = [&](QSize pixels) {
        sizes.clear();
        stage.show(item, SocialFormat::square, pixels);
        settle(stage);
        return sizes;
    };
    EXPECT_EQ(show({1080, 1080}).last(), QSize(1200, 1100));
    EXPECT_GT(sizes.size(), 1) << "the thumbnail comes first";
    item.placement.offset.x = 0.1;
    EXPECT_TRUE(show({1080, 1080}).isEmpty()) << "nothing new to tell";
    item.placement.zoom = 2;
    EXPECT_EQ(show({1080, 1080}), QList<QSize>{QSize(2400, 2200)});
    stage.clear();
    EXPECT_EQ(show({1080, 1080}), QList<QSize>{QSize(2400, 2200)}) << "at once from memory";
}

TEST_F(ItemPicturesTest, onlyTheLastRequestReachesTheStage)
{
    StagePhoto stage(m_photos);
    const PublicationItem first = itemOf(u"a.png"_s, {40, 40}), last = itemOf(u"b.png"_s, {60, 60});
    QList<QSize> sizes;
    stage.show(first, SocialFormat::square, {100, 100});
    QObject::connect(&stage, &StagePhoto::ready, &stage,
                     [&](const QImage& photo) { sizes.append(photo.size()); });
    stage.show(last, SocialFormat::square, {100, 100});
    settle(stage);
    EXPECT_FALSE(sizes.isEmpty());
    EXPECT_FALSE(sizes.contains(QSize(40, 40)));
}

TEST_F(ItemPicturesTest, aMissingPhotoIsToldByStageAndTiles)
{
    StagePhoto stage(m_photos);
    TilePictures tiles(std::make_shared<PhotoCache>(m_folder.filePath(u"other"_s)));
    PublicationItem item = itemOf(u"gone.png"_s, {40, 40});
    QFile::remove(item.image.path);
    QString missing;
    std::optional<PhotoState> tile;
    QObject::connect(&stage, &StagePhoto::photoMissing, &stage,
                     [&](const QString& name) { missing = name; });
    QObject::connect(&tiles, &TilePictures::ready, &tiles,
                     [&](const TileRequest&, const QImage& picture, PhotoState photo) {
                         EXPECT_EQ(picture.size(), QSize(120, 120)) << "with its texts";
                         tile = photo;
                     });
    stage.show(item, SocialFormat::square, {120, 120});
    tiles.want({item}, SocialFormat::square, {120, 120});
    settle(stage);
    settle(tiles);
    EXPECT_EQ(missing, u"gone"_s);
    EXPECT_EQ(tile, PhotoState::missing);
}

TEST_F(ItemPicturesTest, tilesAreDrawnOnceEachAndAnOldWishIsDropped)
{
    TilePictures tiles(m_photos);
    QList<PublicationItem> items;
    for (int i = 0; i < 20; ++i)
        items.append(itemOf(u"%1.png"_s.arg(i), {40, 40}));
    QList<QUuid> drawn;
    QObject::connect(
        &tiles, &TilePictures::ready, &tiles,
        [&](const TileRequest& request, const QImage&) { drawn.append(request.item.id); });
    tiles.want(items, SocialFormat::square, {40, 40});
    tiles.want(items, SocialFormat::square, {40, 40});
    tiles.want(items.mid(0, 4), SocialFormat::square, {40, 40});
    settle(tiles);
    EXPECT_EQ(drawn.size(), 4);
    EXPECT_EQ(QSet<QUuid>(drawn.begin(), drawn.end()).size(), 4);
}
