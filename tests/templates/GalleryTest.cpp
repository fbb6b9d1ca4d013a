#include "templates/BuiltInTemplateLibrary.h"

#include "canvas/ItemLayout.h"
#include "canvas/SafeZone.h"
#include "canvas/TextFitting.h"

#include <QDir>
#include <QFile>
#include <QFontInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// The library leaves out unreadable files silently, so this test counts the designs.
TEST(Gallery, HoldsWholeDesignsForEveryFormat)
{
    const BuiltInTemplateLibrary library;
    qsizetype count = 0;
    QSet<QUuid> ids;
    for (const SocialFormat format : allCases<SocialFormat>()) {
        QSet<int> orders;
        QSet<QString> names;
        for (const JSONVisualTemplateDefinition& design : library.definitions(format)) {
            const std::string place = design.sourceURL.fileName().toStdString();
            ++count;
            ids.insert(design.id);
            orders.insert(design.order);
            names.insert(design.name);
            EXPECT_EQ(design.format, row(format).templateKey.toString()) << place;
            EXPECT_EQ(design.textLayers.size(), 4) << place;
            // Applying a design sets every property: nothing of the earlier style may be left.
            PublicationItem plain = PublicationItem::make({}, {}), styled = plain;
            for (TextLayer& layer : styled.layers) {
                const TextLayer kept = layer;
                layer = TextLayer(kept.id, kept.slot, kept.text, !kept.isVisible, {});
                layer.alignment = LayerTextAlignment::justified;
                layer.foreground = layer.background = layer.shadowColor = {0.1, 0.2, 0.3};
                layer.fontName = u"otra"_s;
                layer.hasBox = !design.textLayers.first().hasBox.value_or(false);
                layer.fontScale = layer.backgroundOpacity = layer.cornerRadius = 0.123;
                layer.shadowOpacity = layer.shadowRadius = layer.shadowDistance = 0.123;
                layer.shadowAngle = 12;
            }
            design.application()(plain);
            design.application()(styled);
            EXPECT_EQ(plain, styled) << place;
        }
        EXPECT_GE(orders.size(), 8);
        EXPECT_EQ(orders.size(), library.definitions(format).size()) << "two of one order";
        EXPECT_EQ(names.size(), orders.size()) << "two of one name";
    }
    EXPECT_EQ(ids.size(), count);
    EXPECT_TRUE(library.pack().unread.isEmpty());
    EXPECT_EQ(count + 1, QDir(u":/templates/gallery"_s).entryList({u"*.json"_s}).size());
}

// The manifest must give every design its place and its tags, and name no file that is missing.
TEST(Gallery, TagsEveryDesign)
{
    QFile file(u":/templates/gallery/pack.json"_s);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonObject manifest = QJsonDocument::fromJson(file.readAll()).object();
    const QStringList tagged = manifest[u"tags"_s].toObject().keys();
    QStringList ordered, files;
    for (const QJsonValue& name : manifest[u"order"_s].toArray())
        ordered.append(name.toString());
    const BuiltInTemplateLibrary library;
    for (const PackDesign& design : library.pack().designs) {
        files.append(design.fileName);
        EXPECT_GE(design.tags.size(), 2) << design.fileName.toStdString();
        EXPECT_LE(design.tags.size(), 4) << design.fileName.toStdString();
    }
    EXPECT_EQ(ordered, files);
    files.sort();
    EXPECT_EQ(tagged, files);
    EXPECT_EQ(library.pack().name, u"De Moltiva"_s);
}

// A font that is not installed would silently become the system font.
TEST(Gallery, UsesInstalledFontsAlone)
{
    const BuiltInTemplateLibrary library;
    for (const SocialFormat format : allCases<SocialFormat>()) {
        for (const JSONVisualTemplateDefinition& design : library.definitions(format)) {
            PublicationItem item = PublicationItem::make({}, {});
            design.application()(item);
            for (const TextLayer& layer : item.layers) {
                if (layer.fontName == u"System"_s)
                    continue;
                const QFont face = ExportCanvasRenderer::nsFont(layer, 20).face;
                const QFontInfo resolved(face);
                const QString full = resolved.family() + u' ' + resolved.styleName();
                EXPECT_TRUE(layer.fontName == resolved.family() || layer.fontName == full)
                    << design.sourceURL.fileName().toStdString() << ": "
                    << layer.fontName.toStdString() << " came out as " << full.toStdString();
            }
        }
    }
}

// In a story, controls of the social network cover the top and the bottom of the image: no text may
// be there.
TEST(Gallery, KeepsTheTextsOfStoriesInTheSafeZone)
{
    const double height = exportSize(SocialFormat::storyReel).height();
    const double top = safeZoneTop * height, bottom = (1 - safeZoneBottom) * height;
    for (const JSONVisualTemplateDefinition& design :
         BuiltInTemplateLibrary().definitions(SocialFormat::storyReel)) {
        PublicationItem item = PublicationItem::make({}, {});
        item.layer(CopySlot::title)->text = u"Un título de los que ocupan dos líneas enteras"_s;
        item.layer(CopySlot::subtitle)->text =
            u"Y debajo un subtítulo que explica algo más, largo"_s;
        design.application()(item);
        const ItemLayout layout =
            layOut(item, exportSize(SocialFormat::storyReel), designSize(SocialFormat::storyReel));
        for (const LaidOutTextLayer& text : layout.texts) {
            const QRectF used = text.text.usedRect().translated(text.textPosition);
            EXPECT_GE(used.top(), top) << design.name.toStdString() << ' ' << int(text.source.slot);
            EXPECT_LE(used.bottom(), bottom)
                << design.name.toStdString() << ' ' << int(text.source.slot);
        }
    }
}
