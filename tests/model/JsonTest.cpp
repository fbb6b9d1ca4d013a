#include "model/Json.h"
#include "model/GeneratedCopy.h"
#include "model/ImagePlacement.h"
#include "model/JsonMapping.h"
#include "model/ShapeLayer.h"
#include "model/TextLayer.h"
#include "model/WorkspaceSnapshot.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TextLayer someLayer()
{
    TextLayer layer(QUuid::createUuid(), CopySlot::tagline, u"Ñandú 🦤 \"cita\"\n\u2028fin"_s,
                    false, {0.1, 1.0 / 3.0, 0.7, 1e-9});
    layer.alignment = LayerTextAlignment::justified;
    layer.fontName = u"Inter Display Black"_s;
    layer.fontScale = 1.15;
    layer.shadowColor = CodableColor(0.1, 0.2, 0.3, 0.4);
    return layer;
}

}    // namespace

TEST(Json, layersComeBackExactly)
{
    const TextLayer layer = someLayer();
    EXPECT_EQ(fromJson<TextLayer>(toJson(layer)), layer);

    ShapeLayer shape(QUuid::createUuid(), ShapeKind::line, {-0.1, 0.2, 1.7, 0});
    shape.strokeOpacity = 0.1 + 0.2;
    EXPECT_EQ(fromJson<ShapeLayer>(toJson(shape)), shape);
    const QList<ShapeLayer> shapes{shape, ShapeLayer(QUuid::createUuid(), ShapeKind::circle, {})};
    EXPECT_EQ(fromJson<QList<ShapeLayer>>(toJson(shapes)), shapes);
}

TEST(Json, keysAndWordsAreThoseOfTheFiles)
{
    ImagePlacement placement{ImageFitMode::fit, 1.5, {0.25, -0.5}};
    EXPECT_EQ(toJson(placement),
              QByteArray(R"({"mode":"Encajar","zoom":1.5,"offsetX":0.25,"offsetY":-0.5})"));
    TextLayer layer = someLayer();
    layer.id = QUuid(u"a3bb189e-8bf9-3888-9912-ace4e6543002"_s);
    const QByteArray text = toJson(layer);
    EXPECT_TRUE(text.contains(R"("id":"A3BB189E-8BF9-3888-9912-ACE4E6543002")"))
        << text.constData();
    EXPECT_TRUE(text.contains(R"("slot":"Tagline")")) << text.constData();
}

TEST(Json, unknownWordsFallBackWhereTheFieldSaysSo)
{
    QByteArray layer = toJson(someLayer());
    EXPECT_EQ(fromJson<TextLayer>(QByteArray(layer).replace("justified", "diagonal"))->alignment,
              LayerTextAlignment::center);
    EXPECT_EQ(fromJson<TextLayer>(QByteArray(layer).replace("Tagline", "Párrafo"))->slot,
              CopySlot::tagline);
    EXPECT_EQ(fromJson<TextLayer>(QByteArray(layer).replace("Tagline", "Pie")), std::nullopt);
    EXPECT_EQ(fromJson<ImagePlacement>(R"({"mode":"?","zoom":2,"offsetX":0,"offsetY":0})")->mode,
              ImageFitMode::fill);
    const ShapeLayer circle(QUuid::createUuid(), ShapeKind::circle, {});
    EXPECT_EQ(fromJson<ShapeLayer>(toJson(circle).replace("Círculo", "Estrella"))->kind,
              ShapeKind::rectangle);
}

TEST(Json, missingOptionalKeysTakeTheirDefaultAndMissingRequiredOnesDropTheRecord)
{
    const QByteArray layer = toJson(someLayer());
    const auto scaled = fromJson<TextLayer>(QByteArray(layer).replace(R"("fontScale":1.15,)", ""));
    ASSERT_TRUE(scaled);
    EXPECT_EQ(scaled->fontScale, 1.0);
    EXPECT_FALSE(fromJson<TextLayer>(QByteArray(layer).replace(R"("hasBox":true,)", "")));
    EXPECT_EQ(fromJson<GeneratedCopy>(
                  toJson(GeneratedCopy::placeholder()).replace("Ver más", "\\\"Ven.\\\""))
                  ->callToAction,
              u"Ven"_s);
}

TEST(Json, anUnreadableBookmarkCostsNoItem)
{
    const QByteArray item =
        R"({"id":"6C1B2E0A-0001-4A00-8000-000000000001","url":"file:///a.jpg","analysis":)" +
        toJson(GeneratedCopy::placeholder()) + R"(,"layers":[],"shapeLayers":[],"placement":)" +
        toJson(ImagePlacement()) + R"(,"paidRenderFingerprints":[],"bookmarkData":)";
    for (const char* bookmark : {"\"?\"", "7", "null", "\"AP8Q\""}) {
        const auto read = fromJson<PublicationItemSnapshot>(item + bookmark + '}');
        ASSERT_TRUE(read) << bookmark;
        EXPECT_EQ(read->bookmarkData.has_value(), QByteArray(bookmark).contains('A')) << bookmark;
    }
}

TEST(Json, oneBadEntryIsDroppedAlone)
{
    const QByteArray good = toJson(someLayer());
    const QByteArray bad = QByteArray(good).replace("\"x\":0.1", "\"x\":\"0.1\"");
    const QByteArray list = "[" + good + ",null,7," + bad + ",[]," + good + "]";
    const auto layers = fromJson<QList<TextLayer>>(list);
    ASSERT_TRUE(layers);
    EXPECT_EQ(layers->size(), 2);
}

TEST(Json, hostileBytesGiveNothing)
{
    const QByteArray deep = QByteArray(200000, '[');
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray("{"), QByteArray("nul"), QByteArray("[]"), deep,
          deep + QByteArray(200000, ']'),
          QByteArray("{\"red\":1e999,\"green\":0,\"blue\":0,\"alpha\":1}"),
          QByteArray("{\"red\":true,\"green\":0,\"blue\":0,\"alpha\":1}"),
          QByteArray("\xff\xfe{}")}) {
        EXPECT_EQ(fromJson<CodableColor>(bytes), std::nullopt) << bytes.left(60).constData();
    }
}

// A record with kinds of fields that model/ does not have: addresses, bytes, sets, absent values,
// whole numbers.
namespace {

struct Parcel {
    QUrl url;
    std::optional<QByteArray> bookmark;
    QSet<QString> marks;
    int count = 7;
    QList<QUuid> ids;
    std::optional<qint64> wide;
    bool operator==(const Parcel&) const = default;
};

}    // namespace

template <>
struct json::JsonFields<Parcel> {
    static constexpr auto fields =
        std::tuple{required("url", &Parcel::url),     optional("bookmark", &Parcel::bookmark),
                   optional("marks", &Parcel::marks), optional("count", &Parcel::count),
                   optional("ids", &Parcel::ids),     optional("wide", &Parcel::wide)};
};

TEST(Json, addressesBytesAndSetsHaveTheirForms)
{
    const auto read = [](const char* text) {
        Parcel parcel;
        return json::read(json::Value::parse(text), parcel) ? std::optional(parcel) : std::nullopt;
    };
    const Parcel parcel{QUrl::fromLocalFile(u"/fotos/ñ 1%.jpg"_s),
                        QByteArray("\x00\xff\x10", 3),
                        {u"b"_s, u"a"_s},
                        3,
                        {QUuid(u"a3bb189e-8bf9-3888-9912-ace4e6543002"_s)},
                        -9'007'199'254'740'993};    // a double would lose the last digit
    const QByteArray text = json::written(parcel);
    EXPECT_EQ(
        text,
        R"({"url":"file:///fotos/%C3%B1%201%25.jpg","bookmark":"AP8Q","marks":["a","b"],"count":3,)"
        R"("ids":["A3BB189E-8BF9-3888-9912-ACE4E6543002"],"wide":-9007199254740993})");
    EXPECT_EQ(read(text.constData()), parcel);
    EXPECT_EQ(
        json::written(
            Parcel{
                .url = parcel.url, .bookmark = {}, .marks = {}, .count = 0, .ids = {}, .wide = {}})
            .contains("bookmark"),
        false);

    EXPECT_EQ(read(R"({"url":"file:///a"})")->count, 7);
    EXPECT_EQ(read(R"({"url":"file:///a","bookmark":null})")->bookmark, std::nullopt);
    EXPECT_EQ(read(R"({"url":"file:///a","count":3.0})")->count, 3);
    EXPECT_EQ(read(R"({"url":"file:///a","ids":["x",5,"A3BB189E-8BF9-3888-9912-ACE4E6543002"]})")
                  ->ids.size(),
              1);
    for (const char* bad :
         {R"({"url":"relative"})", R"({"url":7})", R"({"url":"file:///a","count":3.5})",
          R"({"url":"file:///a","count":1e10})", R"({"url":"file:///a","count":5000000000})",
          R"({"url":"file:///a","wide":9223372036854775808})", R"({"url":"file:///a","wide":1e19})",
          R"({"url":"file:///a","bookmark":"?"})", R"({"url":"file:///a","marks":{}})"})
        EXPECT_EQ(read(bad), std::nullopt) << bad;
}
