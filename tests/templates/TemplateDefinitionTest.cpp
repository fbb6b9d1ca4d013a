#include "templates/TemplateDefinition.h"

#include "canvas/ItemPainter.h"
#include "model/JsonMapping.h"
#include "templates/BuiltInTemplateLibrary.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

PublicationItem sampleItem()
{
    PublicationItem item = PublicationItem::make(QUrl(u"file:///foto.jpg"_s), {});
    item.layer(CopySlot::title)->text = u"Lo que escribió la usuaria"_s;
    item.layer(CopySlot::title)->foreground = {1, 0, 0};
    item.layer(CopySlot::title)->fontScale = 1.7;
    item.shapeLayers = {ShapeLayer(QUuid::createUuid(), ShapeKind::circle, {0, 0, 1, 1})};
    return item;
}

JSONVisualTemplateDefinition defined(const QByteArray& bytes)
{
    const DefinitionFile read = readDefinition(bytes);
    EXPECT_TRUE(read.definition) << read.error.toStdString();
    return read.definition.value_or(JSONVisualTemplateDefinition());
}

const QByteArray fullText = R"({"slot":"Título","visible":true,
    "frame":{"x":0.1,"y":0.2,"width":0.7,"height":0.3},"alignment":"leading",
    "foreground":"#102030","fontName":"Inter","fontScale":1.5,"hasBox":true,
    "background":"F7EBDD","backgroundOpacity":0.5,"cornerRadius":4,"shadowOpacity":0.1,
    "shadowRadius":2,"shadowDistance":3,"shadowAngle":45,"shadowColor":"#00ff00"})";
const QByteArray fullShape = R"({"kind":"Rectángulo","frame":{"x":0,"y":0.5,"width":1,"height":0.5},
    "fill":"#334455","fillOpacity":0.8,"stroke":"#FFFFFF","strokeOpacity":1,"strokeWidth":2,
    "cornerRadius":6})";
const QByteArray fullDefinition =
    R"({"id":"6C1B2E0A-0001-4A00-8000-000000000001","order":3,"name":"Marco","format":"square",)"
    R"("previewPNGBase64":"AAAA","textLayers":[)" +
    fullText + R"(],"shapeLayers":[)" + fullShape + "]}";

}    // namespace

TEST(TemplateDefinition, KeepsTextsAndWhatItDoesNotMention)
{
    const auto design = defined(R"({"textLayers":[
        {"slot":"Eslogan","frame":{"x":0,"y":0,"width":1,"height":1}},
        {"slot":"Título","frame":{"x":0.1,"y":0.2,"width":0.3,"height":0.4}},
        {"slot":"Párrafo","visible":true,"frame":{"x":0,"y":0,"width":1,"height":1},
         "foreground":"no es un color","cornerRadius":"mucho","alignment":"al revés"}]})");
    const PublicationItem before = sampleItem();
    PublicationItem item = before;
    design.application()(item);
    TextLayer expected = before.layers[0];
    expected.frame = {0.1, 0.2, 0.3, 0.4};
    EXPECT_EQ(item.layers[0], expected);
    EXPECT_EQ(item.layers[1], before.layers[1]);    // the definition has no text for this slot
    expected = before.layers[2];
    expected.isVisible = true;
    expected.frame = {0, 0, 1, 1};
    EXPECT_EQ(item.layers[2], expected);
    EXPECT_TRUE(item.shapeLayers.isEmpty());    // the definition has no shapes
    EXPECT_EQ(design.visualTemplate(before, SocialFormat::square).textLayers.size(), 2);

    // An unknown kind of shape becomes a rectangle.
    const auto shaped = defined(QByteArray(fullDefinition).replace("Rectángulo", "Estrella"));
    ASSERT_EQ(shaped.shapeLayers.size(), 1);
    EXPECT_EQ(shaped.shapeLayers[0].kind, ShapeKind::rectangle);

    // Applying the design skips a slot that the item lacks.
    item.layers.removeFirst();
    const auto without = item.layers;
    design.application()(item);
    EXPECT_EQ(item.layers, without);
    const auto made = design.textLayers[1].textLayer(item);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->text, item.analysis.title);
    EXPECT_EQ(made->fontScale, 1.0);
}

TEST(TemplateDefinition, GivesAllItemsTheSameShapes)
{
    const auto design = defined(fullDefinition);
    PublicationItem one = sampleItem(), other = sampleItem();
    const TemplateApplication apply = design.application();
    apply(one);
    apply(other);
    ASSERT_EQ(one.shapeLayers.size(), 1);
    EXPECT_FALSE(one.shapeLayers[0].id.isNull());
    EXPECT_EQ(one.shapeLayers, other.shapeLayers);
    EXPECT_EQ(one.shapeLayers[0].fill, *CodableColor::fromHexRGB(u"#334455"));
    EXPECT_EQ(one.layers[0].text, u"Lo que escribió la usuaria"_s);
    EXPECT_TRUE(isApplied(apply, one));    // applying again would change nothing
    one.shapeLayers[0].fillOpacity = 0.1;
    EXPECT_FALSE(isApplied(apply, one));
}

TEST(TemplateDefinition, BelongsToTheFirstFormatWithoutAUsableOne)
{
    EXPECT_TRUE(defined(fullDefinition).matches(SocialFormat::square));
    for (const char* key : {R"("format":"diagonal",)", R"("format":7,)", ""}) {
        const auto design = defined(QByteArray("{") + key + R"("textLayers":[]})");
        for (const SocialFormat format : allCases<SocialFormat>())
            EXPECT_EQ(design.matches(format), format == SocialFormat::storyReel) << key;
    }
}

TEST(TemplateDefinition, ComesBackFromItsFileAsItWas)
{
    const PublicationItem item = sampleItem();
    QTemporaryDir folder;
    const auto write = [&](const QString& name, const QByteArray& bytes) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    };
    write(u"uno.json"_s, fullDefinition);
    write(u"roto.json"_s, "{");
    const BuiltInTemplateLibrary library(folder.path());
    ASSERT_EQ(library.definitions(SocialFormat::square).size(), 1);

    VisualTemplate saved = VisualTemplate::of(item, u"«Mía»\n"_s, SocialFormat::square);
    saved.previewPNG = "una foto de la usuaria";
    const auto written = library.templateDefinition(saved, u"Mía"_s, SocialFormat::square);
    EXPECT_EQ(written.order, 4);    // follows the order 3 of the definition in `folder`
    EXPECT_EQ(library.templateDefinition(saved, {}, SocialFormat::horizontal).order, 0);
    const auto read = defined(definitionBytes(written));
    VisualTemplate back = read.visualTemplate(PublicationItem::make({}, {}), SocialFormat::square);
    EXPECT_EQ(back.id, saved.id);
    EXPECT_EQ(back.textLayers, saved.textLayers);
    ASSERT_EQ(back.shapeLayers.size(), 1);
    EXPECT_EQ(ShapeLayer::preservingID(saved.shapeLayers[0].id, back.shapeLayers[0]),
              saved.shapeLayers[0]);
    EXPECT_EQ(back.name, u"Mía"_s);
    EXPECT_FALSE(back.previewPNG);

    const auto fromFile = readDefinitionFile(folder.filePath(u"uno.json"_s));
    ASSERT_TRUE(fromFile.definition);
    EXPECT_FALSE(definitionBytes(*fromFile.definition).contains(folder.path().toUtf8()));
    EXPECT_EQ(fromFile.definition->sourceURL, QUrl::fromLocalFile(folder.filePath(u"uno.json"_s)));
    EXPECT_EQ(fromFile.definition->previewImage(), QByteArray::fromBase64("AAAA"));
}

// Every file must be refused with a reason, or be readable and take finite time to draw.
TEST(TemplateDefinition, SurvivesHostileFiles)
{
    QByteArray manyKeys = R"({"textLayers":[])";
    for (int i = 0; i < 200000; ++i)
        manyKeys += ",\"k" + QByteArray::number(i) + "\":1";
    QList<QByteArray> files{
        manyKeys + '}',

        "",
        "null",
        "[]",
        "\"\"",
        "{}",
        "\xff\xfe{\0}",
        R"({"textLayers":{}})",
        R"({"textLayers":[null,7,[],{},"x"],"shapeLayers":[null,{}]})",
        QByteArray(1000000, '['),
        R"({"textLayers":)" + QByteArray(500000, '['),
        R"({"a":)" + QByteArray("{\"a\":").repeated(200000),
        fullDefinition.left(fullDefinition.size() - 1),
        R"({"textLayers":[],"previewPNGBase64":")" + QByteArray(50 << 20, 'A') + "\"}",
        R"({"textLayers":[],"previewWebPBase64":")" + QByteArray(8 << 20, 'A') + "\"}",
        R"({"shapeLayers":[)" + (fullShape + ',').repeated(2000) + fullShape + "]}",
        R"({"name":")" + QByteArray(1 << 20, 'n') + R"(","textLayers":[]})"};
    // Adds copies of a good file in which one key has a value of a wrong kind.
    const auto good = json::Value::parse(fullDefinition.begin(), fullDefinition.end());
    const QList<json::Value> bad{json::Value(nullptr),       json::Value(1e308),
                                 json::Value(-1e308),        json::Value("#12345G"),
                                 json::Value::array({1, 2}), json::Value::object(),
                                 json::Value(true)};
    const auto spoil = [&](const json::Value::json_pointer& object) {
        for (const auto& entry : good[object].items()) {
            for (const json::Value& value : bad) {
                json::Value spoilt = good;
                spoilt[object][entry.key()] = value;
                files.append(QByteArray::fromStdString(spoilt.dump()));
            }
        }
    };
    for (const char* object :
         {"", "/textLayers/0", "/textLayers/0/frame", "/shapeLayers/0", "/shapeLayers/0/frame"})
        spoil(json::Value::json_pointer(object));
    ASSERT_GT(files.size(), 60);

    qsizetype readable = 0;
    for (const QByteArray& bytes : files) {
        const DefinitionFile read = readDefinition(bytes);
        EXPECT_NE(read.definition.has_value(), !read.error.isEmpty());
        if (!read.definition)
            continue;
        ++readable;
        EXPECT_LE(read.definition->name.size(), 80);
        PublicationItem item = sampleItem();
        read.definition->application()(item);
        EXPECT_EQ(item.layers[0].text, sampleItem().layers[0].text);
        EXPECT_FALSE(paintedItem(layOut(item, {54, 54}, {540, 540}), {54, 54}, {}).isNull());
    }
    EXPECT_GT(readable, 100);
    EXPECT_LT(readable, files.size() - 5);
}
