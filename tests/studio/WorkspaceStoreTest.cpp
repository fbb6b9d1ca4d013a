#include "studio/WorkspaceStore.h"
#include "model/Json.h"
#include "model/WorkspaceSnapshot.h"
#include "platform/PreferencesStore.h"
#include "platform/photo/PhotoCache.h"
#include "studio/WorkspaceEncoder.h"

#include <QCoroTask>

#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class WorkspaceStoreTest : public ::testing::Test {
protected:
    PublicationItem item(const QString& name)
    {
        QImage image(64, 48, QImage::Format_RGB32);
        image.fill(Qt::blue);
        const QString path = m_folder.filePath(name);
        EXPECT_TRUE(image.save(path));
        const QUrl url = QUrl::fromLocalFile(path);
        const auto photo = m_photos->accept(path);
        return PublicationItem::make(
            url, {path, photo->info.size, photo->info.reducible, photo->digest});
    }
    Batch batchOf(int count)
    {
        Batch batch;
        batch.format = SocialFormat::square;
        batch.objective = u"Ofertas de \"otoño\"\n🍂"_s;
        for (int i = 0; i < count; ++i)
            batch.items.append(item(u"ñ %1.png"_s.arg(i)));
        batch.selectedItemIDs.insert(batch.items[0].id);
        batch.selectedLayerID = batch.items[0].layers[1].id;
        return batch;
    }
    WorkspaceStore::Restored restored(const QByteArray& document)
    {
        return QCoro::waitFor(WorkspaceStore::restore(document, m_photos, {}));
    }
    QByteArray encoded(const Batch& batch) { return WorkspaceEncoder().encode(batch); }

    QTemporaryDir m_folder, m_cache;
    std::shared_ptr<PhotoCache> m_photos = std::make_shared<PhotoCache>(m_cache.path());
};

}    // namespace

TEST_F(WorkspaceStoreTest, aBatchComesBackAsItWas)
{
    Batch batch = batchOf(3);
    batch.selectedIndex = batch.selectionAnchorIndex = 2;
    batch.selectedItemIDs = {batch.items[0].id, batch.items[2].id};
    batch.selectedLayerID = batch.items[2].layers[3].id;
    batch.items.edit(1).shapeLayers = {
        ShapeLayer(QUuid::createUuid(), ShapeKind::line, {0, 1, 2, 3})};
    batch.items.edit(1).placement = {ImageFitMode::fit, 1.7, {0.1, -0.2}};
    batch.items.edit(1).paidRenderFingerprints = {u"b"_s, u"a"_s};
    batch.items.edit(2).layers[0].text = u"Otra \u2028 \\ línea"_s;

    const auto result = restored(encoded(batch));
    EXPECT_TRUE(result.isComplete);
    EXPECT_EQ(result.workspace, batch);
}

TEST_F(WorkspaceStoreTest, whatIsKeptOfTheLastDocumentGivesTheSameTextAsABlankStart)
{
    WorkspaceEncoder encoder;
    Batch batch = batchOf(4);
    encoder.encode(batch);
    const std::array<std::function<void()>, 10> edits{
        [&] { batch.items.edit(1).layers[2].fontScale = 1.15; },
        [&] { batch.items.edit(1).layers.removeAt(0); },
        [&] { batch.items.edit(1).layers.swapItemsAt(0, 1); },
        [&] {
            batch.items.edit(2).shapeLayers.append(
                ShapeLayer(QUuid::createUuid(), ShapeKind::circle, {}));
        },
        [&] { batch.items.edit(2).analysis.imageNotes = u"mar"_s; },
        [&] { batch.items.edit(2).isCaptionOwn = true; },
        [&] { batch.items.edit(2).paidRenderFingerprints.insert(u"x"_s); },
        [&] { batch.items.edit(3).placement.zoom = 2; },
        [&] { batch.items.swapItemsAt(0, 3); },
        [&] { batch.items.removeAt(1); },
    };
    for (std::size_t i = 0; i < edits.size(); ++i) {
        edits[i]();
        EXPECT_EQ(encoder.encode(batch), encoded(batch)) << "edit " << i;
    }
    // WorkspaceEncoder and WorkspaceSnapshot write the same keys.
    const auto read = fromJson<WorkspaceSnapshot>(encoded(batch));
    ASSERT_TRUE(read);
    EXPECT_EQ(toJson(*read), encoded(batch));
}

TEST_F(WorkspaceStoreTest, indicesAndSelectionFitWhatIsLeft)
{
    Batch batch = batchOf(5);
    batch.selectedIndex = 4;
    batch.selectionAnchorIndex = 3;
    batch.selectedItemIDs = {batch.items[0].id, batch.items[4].id};
    batch.selectedLayerID = batch.items[0].layers[2].id;
    QFile::remove(batch.items[4].url.toLocalFile());
    QFile::remove(batch.items[1].url.toLocalFile());
    const auto result = restored(encoded(batch));
    ASSERT_TRUE(result.workspace);
    EXPECT_FALSE(result.isComplete);
    const Batch& left = *result.workspace;
    ASSERT_EQ(left.items.size(), 3);
    EXPECT_EQ(left.selectedIndex, 2);
    EXPECT_EQ(left.selectionAnchorIndex, 2);
    EXPECT_EQ(left.selectedItemIDs, (QSet<QUuid>{left.items[0].id, left.items[2].id}));
    EXPECT_EQ(left.selectedLayerID, left.items[2].layers[0].id);
}

TEST_F(WorkspaceStoreTest, readsWhatOtherVersionsLeaveOutOrCallOtherwise)
{
    const Batch batch = batchOf(2);
    QByteArray document = encoded(batch);
    document.replace("\"Post cuadrado\"", "\"Panorámica\"");
    document.replace(",\"fontScale\":1", "");
    document.replace(",\"shapeLayers\":[]", "");
    document.replace(",\"paidRenderFingerprints\":[]", "");
    document.replace("\"Llenar\"", "\"Estirar\"");
    document.replace("\"Tagline\"", "\"Pie de foto\"");
    const auto result = restored(document);
    ASSERT_TRUE(result.workspace);
    EXPECT_TRUE(result.isComplete);
    EXPECT_EQ(result.workspace->format, SocialFormat::storyReel);
    const PublicationItem& item = result.workspace->items[0];
    ASSERT_EQ(item.layers.size(), 4);
    EXPECT_EQ(item.layers[0], batch.items[0].layers[0]);
    EXPECT_EQ(item.layers[2].slot, CopySlot::tagline);
    EXPECT_NE(item.layers[2].id, batch.items[0].layers[2].id);
    EXPECT_FALSE(item.layers[2].isVisible);
    EXPECT_EQ(item.placement.mode, ImageFitMode::fill);
}

TEST_F(WorkspaceStoreTest, hostileDocumentsGiveNothingOrWhatReads)
{
    const QByteArray good = encoded(batchOf(2));
    for (const QByteArray& bad :
         {QByteArray(), QByteArray("7"), QByteArray("[]"), good.left(good.size() / 2),
          QByteArray("{\"items\":" + QByteArray(100000, '[')),
          QByteArray(good).replace("items", "x")})
        EXPECT_FALSE(restored(bad).isDecoded) << bad.left(40).constData();

    // An unreadable layer makes the restored workspace incomplete; a layer of an unknown slot does
    // not.
    EXPECT_FALSE(
        restored(QByteArray(good).replace("\"hasBox\":true", "\"hasBox\":\"sí\"")).isComplete);
    QByteArray sameIds = good;
    const QRegularExpression layerId(
        u"\"layers\":\\[\\{\"id\":\"([^\"]+)\".*?\\{\"id\":\"([^\"]+)\""_s);
    const auto ids = layerId.match(QString::fromUtf8(good));
    ASSERT_TRUE(ids.hasMatch());
    sameIds.replace(ids.captured(2).toUtf8(), ids.captured(1).toUtf8());
    const auto layers = restored(sameIds).workspace->items[0].layers;
    EXPECT_NE(layers[0].id, layers[1].id);

    // Inserts a repeated item and entries that are no items.
    QByteArray twice = good;
    const auto begin = twice.indexOf("\"items\":[") + 9;
    const QByteArray items = twice.mid(begin, twice.size() - begin - 2);
    twice.insert(begin, items + ",null,{\"id\":5},");
    const auto result = restored(twice);
    ASSERT_TRUE(result.workspace);
    EXPECT_EQ(result.workspace->items.size(), 2);
    EXPECT_FALSE(result.isComplete);
}
