#include "templates/SavedTemplates.h"

#include "platform/PreferencesStore.h"
#include "platform/photo/PhotoCache.h"
#include "templates/TemplatePreviewRenderer.h"
#include "templates/TemplateStores.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class SavedTemplatesTest : public ::testing::Test {
protected:
    std::unique_ptr<SavedTemplates> opened()
    {
        return std::make_unique<SavedTemplates>(preferences, m_photos);
    }
    PublicationItem photographed()
    {
        QImage image(64, 80, QImage::Format_RGB32);
        image.fill(Qt::darkGreen);
        const QString path = folder.filePath(u"foto.png"_s);
        EXPECT_TRUE(image.save(path));
        PublicationItem item = PublicationItem::make(
            QUrl::fromLocalFile(path), {path, image.size(), false, m_photos->accept(path)->digest});
        item.shapeLayers = {ShapeLayer(QUuid::createUuid(), ShapeKind::line, {0, 0, 1, 0.1})};
        return item;
    }

    QTemporaryDir folder;
    std::shared_ptr<PhotoCache> m_photos =
        std::make_shared<PhotoCache>(folder.filePath(u"cache"_s));
    PreferencesStore preferences{folder.filePath(u"preferences.sqlite"_s)};
};

constexpr SocialFormat portrait = SocialFormat::carouselPortrait;

}    // namespace

TEST_F(SavedTemplatesTest, IsEmptyWithoutAReadableValue)
{
    EXPECT_TRUE(DesignTemplateStore::load(preferences).isEmpty());
    for (const QByteArray& bytes : {QByteArray(), QByteArray("{"), QByteArray("{\"a\":1}")}) {
        preferences.setValue(u"moltiva.visualTemplates"_s, bytes);
        preferences.setValue(u"moltiva.designTemplates"_s, bytes);
        EXPECT_TRUE(VisualTemplateStore::load(preferences).isEmpty()) << bytes.toStdString();
        EXPECT_TRUE(DesignTemplateStore::load(preferences).isEmpty()) << bytes.toStdString();
    }
}

TEST_F(SavedTemplatesTest, ComesBackAtTheNextStart)
{
    auto saved = opened();
    const PublicationItem item = photographed();
    const QUuid first = saved->saveTemplate(item, portrait);
    const QUuid second = saved->saveTemplate(item, SocialFormat::square);
    saved->renameTemplate(first, u"  Otoño\n2026 "_s);
    saved->renameTemplate(second, u"   "_s);    // ignored: a name cannot be blank
    TextLayerDesign style(CopySlot::callToAction);
    style.fontName = u"Inter"_s;
    const QUuid styleId = saved->saveStyle(style);
    QElapsedTimer watch;
    for (watch.start(); !saved->templates().find(first)->previewPNG && watch.elapsed() < 20000;)
        QGuiApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);

    const auto again = opened();
    EXPECT_EQ(again->templates().entries(), saved->templates().entries());
    EXPECT_EQ(again->templates().find(first)->name, u"Otoño 2026"_s);
    EXPECT_EQ(again->templates().find(second)->name, u"Plantilla 2"_s);
    EXPECT_TRUE(again->templates().find(first)->suits(portrait));
    EXPECT_FALSE(again->templates().find(first)->suits(SocialFormat::square));
    EXPECT_EQ(again->templates().find(first)->shapeLayers, item.shapeLayers);
    EXPECT_EQ(QImage::fromData(*again->templates().find(first)->previewPNG).size(),
              QSize(360, 450));
    EXPECT_EQ(again->styles().find(styleId)->style, style);
    EXPECT_TRUE(VisualTemplate().suits(portrait));
}

TEST_F(SavedTemplatesTest, GivesEachSlotItsOwnPlaceWhateverTheOrder)
{
    PublicationItem item = photographed();
    VisualTemplate saved = VisualTemplate::of(item, u"Del revés"_s, portrait);
    saved.textLayers.removeAt(1);    // the subtitle
    std::ranges::reverse(saved.textLayers);
    for (TextLayerTemplate& text : saved.textLayers)
        text.frame = {0.1 * int(text.slot), 0, 0.5, 0.1};
    const TextLayer subtitle = item.layers[1];
    saved.apply(item);
    EXPECT_EQ(item.layers[1], subtitle);
    for (const CopySlot slot : {CopySlot::title, CopySlot::tagline, CopySlot::callToAction})
        EXPECT_EQ(item.layer(slot)->frame.x, 0.1 * int(slot)) << int(slot);
}

TEST_F(SavedTemplatesTest, CallsBackWhatWasRemovedOrReplaced)
{
    const auto saved = opened();
    PublicationItem item = photographed();
    const QUuid id = saved->saveTemplate(item, portrait);
    const QUuid other = saved->saveTemplate(item, portrait);
    item.shapeLayers.clear();
    saved->updateTemplate(id, item, portrait);
    EXPECT_TRUE(saved->templates().find(id)->shapeLayers.isEmpty());
    for (const QUuid each : {id, other}) {
        const auto order = saved->templates().entries();
        saved->removeTemplate(each);
        saved->callBackTemplate();
        EXPECT_EQ(saved->templates().entries(), order) << "each comes back in its place";
    }
    saved->callBackTemplate();    // brings back the replaced arrangement as another entry
    ASSERT_EQ(saved->templates().entries().size(), 3);
    EXPECT_TRUE(saved->templates().lastRemoved().isEmpty());
    EXPECT_TRUE(std::ranges::any_of(saved->templates().entries(), [&](const VisualTemplate& one) {
        return one.id != id && one.id != other && one.shapeLayers.size() == 1;
    }));

    // A template from a file is added only once, and never replaces one that the user has changed.
    VisualTemplate imported = VisualTemplate::of(item, u"De fuera"_s, portrait);
    EXPECT_EQ(saved->addTemplate(imported), imported.id);
    EXPECT_TRUE(saved->addTemplate(imported).isNull());
    saved->renameTemplate(imported.id, u"Ahora es mía"_s);
    const QUuid again = saved->addTemplate(imported);
    EXPECT_FALSE(again.isNull());
    EXPECT_NE(again, imported.id);
    // Removes a template, adds it again from its file, and then also brings the removed one back.
    saved->removeTemplate(imported.id);
    saved->renameTemplate(again, u"Otra"_s);
    EXPECT_EQ(saved->addTemplate(imported), imported.id);
    saved->callBackTemplate();
    QSet<QUuid> ids;
    for (const VisualTemplate& one : saved->templates().entries())
        ids.insert(one.id);
    EXPECT_EQ(ids.size(), saved->templates().entries().size());
}

TEST_F(SavedTemplatesTest, DrawsPreviewsInTheirSizes)
{
    using namespace TemplatePreviewRenderer;
    const PublicationItem item = photographed();
    EXPECT_EQ(previewSize(portrait), QSizeF(540, 675));
    const auto sizeOf = [](const std::optional<QByteArray>& bytes) {
        return bytes ? QImage::fromData(*bytes).size() : QSize();
    };
    EXPECT_EQ(sizeOf(pngData(item, portrait)), QSize(540, 675));
    const auto jpeg = jpegData(item, portrait, QSizeF(54, 68), 0.72);
    EXPECT_EQ(sizeOf(jpeg), QSize(54, 68));
    EXPECT_TRUE(jpeg->startsWith("\xff\xd8"));
    const auto compact = compactData(item, portrait);
    ASSERT_TRUE(compact);
    EXPECT_EQ(sizeOf(compact->data), QSize(360, 450));
    EXPECT_EQ(compact->isWebP, BuiltInTemplateLibrary::isWebPData(compact->data));
    EXPECT_TRUE(compact->isWebP || compact->data.startsWith("\xff\xd8"));
    PublicationItem gone = item;
    gone.image.path = folder.filePath(u"no-está.png"_s);
    EXPECT_FALSE(compactData(gone, portrait));

    EXPECT_FALSE(BuiltInTemplateLibrary::isWebPData("RIFF0000WEB"));
    EXPECT_FALSE(BuiltInTemplateLibrary::isWebPData("RIFX0000WEBPVP8 "));
    EXPECT_TRUE(BuiltInTemplateLibrary::isWebPData("RIFF0000WEBP"));
}
