#include "app/ItemPictures.h"

#include "canvas/ExportCanvasRenderer.h"
#include "platform/PhotoCache.h"

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

TEST_F(ItemPicturesTest, theStageAtTheSizeOfAnExportIsTheExport)
{
    StagePicture stage(m_photos);
    QImage shown;
    QObject::connect(&stage, &StagePicture::ready, &stage,
                     [&](const QImage& picture) { shown = picture; });
    for (PublicationItem item :
         {itemOf(u"large.jpg"_s, {2400, 1700}), itemOf(u"p.png"_s, {500, 900})}) {
        for (const SocialFormat format : allCases<SocialFormat>()) {
            item.placement.zoom = 1 + 0.3 * int(format);
            item.shapeLayers = {
                ShapeLayer(QUuid::createUuid(), ShapeKind::circle, {0.1, 0.1, 0.3, 0.2})};
            stage.show(item, format, exportSize(format).toSize());
            settle(stage);
            EXPECT_EQ(shown,
                      *ExportCanvasRenderer::bitmap(item, exportSize(format), designSize(format)))
                << qPrintable(rawValue(format));
        }
    }
}

TEST_F(ItemPicturesTest, onlyTheLastRequestReachesTheStage)
{
    StagePicture stage(m_photos);
    const PublicationItem first = itemOf(u"a.png"_s, {40, 40}), last = itemOf(u"b.png"_s, {60, 60});
    QList<QSize> sizes;
    QObject::connect(&stage, &StagePicture::ready, &stage,
                     [&](const QImage& picture) { sizes.append(picture.size()); });
    stage.show(first, SocialFormat::square, {100, 100});
    stage.show(last, SocialFormat::square, {120, 120});
    settle(stage);
    EXPECT_FALSE(sizes.isEmpty());
    EXPECT_FALSE(sizes.contains(QSize(100, 100)));
}

TEST_F(ItemPicturesTest, aMissingPhotoIsToldAndTheTextsAreStillShown)
{
    StagePicture stage(m_photos);
    PublicationItem item = itemOf(u"gone.png"_s, {40, 40});
    QFile::remove(item.image.path);
    QString missing;
    QImage shown;
    QObject::connect(&stage, &StagePicture::photoMissing, &stage,
                     [&](const QString& name) { missing = name; });
    QObject::connect(&stage, &StagePicture::ready, &stage,
                     [&](const QImage& picture) { shown = picture; });
    stage.show(item, SocialFormat::square, {120, 120});
    settle(stage);
    EXPECT_EQ(missing, u"gone"_s);
    EXPECT_EQ(shown.size(), QSize(120, 120));
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
