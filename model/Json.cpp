#include "model/Json.h"

#include "model/GeneratedCopy.h"
#include "model/ImagePlacement.h"
#include "model/JsonMapping.h"
#include "model/ShapeLayer.h"
#include "model/TextLayer.h"
#include "model/WorkspaceSnapshot.h"

namespace json {

template <>
struct JsonFields<CodableColor> {
    static constexpr auto fields =
        std::tuple{required("red", &CodableColor::red), required("green", &CodableColor::green),
                   required("blue", &CodableColor::blue), required("alpha", &CodableColor::alpha)};
};

template <>
struct JsonFields<CodableRect> {
    static constexpr auto fields = std::tuple{
        required("x", &CodableRect::x), required("y", &CodableRect::y),
        required("width", &CodableRect::width), required("height", &CodableRect::height)};
};

template <>
struct JsonFields<ImagePlacement> {
    static constexpr auto fields =
        std::tuple{required("mode", &ImagePlacement::mode, ImageFitMode::fill),
                   required("zoom", &ImagePlacement::zoom),
                   required(
                       "offsetX", [](auto& placement) -> auto& { return placement.offset.x; }),
                   required(
                       "offsetY", [](auto& placement) -> auto& { return placement.offset.y; })};
};

template <>
struct JsonFields<GeneratedCopy> {
    static constexpr auto fields =
        std::tuple{required("title", &GeneratedCopy::title),
                   required("subtitle", &GeneratedCopy::subtitle),
                   required("tagline", &GeneratedCopy::tagline),
                   required("callToAction", &GeneratedCopy::callToAction),
                   required("publicationCaption", &GeneratedCopy::publicationCaption),
                   required("imageNotes", &GeneratedCopy::imageNotes)};
    static void settle(GeneratedCopy& copy)
    {
        copy.callToAction = GeneratedCopy::normalizedCallToAction(copy.callToAction);
    }
};

template <>
struct JsonFields<TextLayerDesign> {
    static constexpr auto fields =
        std::tuple{required("foreground", &TextLayerDesign::foreground),
                   required("fontName", &TextLayerDesign::fontName),
                   optional("fontScale", &TextLayerDesign::fontScale),
                   required("hasBox", &TextLayerDesign::hasBox),
                   required("background", &TextLayerDesign::background),
                   required("backgroundOpacity", &TextLayerDesign::backgroundOpacity),
                   required("cornerRadius", &TextLayerDesign::cornerRadius),
                   required("shadowOpacity", &TextLayerDesign::shadowOpacity),
                   required("shadowRadius", &TextLayerDesign::shadowRadius),
                   required("shadowDistance", &TextLayerDesign::shadowDistance),
                   required("shadowAngle", &TextLayerDesign::shadowAngle),
                   required("shadowColor", &TextLayerDesign::shadowColor)};
};

template <>
struct JsonFields<TextLayer> {
    static constexpr auto fields =
        std::tuple{required("id", &TextLayer::id),
                   required("slot", &TextLayer::slot),
                   required("text", &TextLayer::text),
                   required("isVisible", &TextLayer::isVisible),
                   required("frame", &TextLayer::frame),
                   required("alignment", &TextLayer::alignment, LayerTextAlignment::center)} +
        JsonFields<TextLayerDesign>::fields;
};

template <>
struct JsonFields<ShapeLayerDesign> {
    static constexpr auto fields =
        std::tuple{required("kind", &ShapeLayerDesign::kind, ShapeKind::rectangle),
                   required("fill", &ShapeLayerDesign::fill),
                   required("fillOpacity", &ShapeLayerDesign::fillOpacity),
                   required("stroke", &ShapeLayerDesign::stroke),
                   required("strokeOpacity", &ShapeLayerDesign::strokeOpacity),
                   required("strokeWidth", &ShapeLayerDesign::strokeWidth),
                   required("cornerRadius", &ShapeLayerDesign::cornerRadius)};
};

template <>
struct JsonFields<ShapeLayer> {
    static constexpr auto fields =
        std::tuple{required("id", &ShapeLayer::id), required("frame", &ShapeLayer::frame)} +
        JsonFields<ShapeLayerDesign>::fields;
};

template <>
struct JsonFields<PublicationItemSnapshot> {
    using Item = PublicationItemSnapshot;
    static constexpr auto fields =
        std::tuple{required("id", &Item::id),
                   required("url", &Item::url),
                   optional("bookmarkData", &Item::bookmarkData),
                   required("analysis", &Item::analysis),
                   required("layers", &Item::layers),
                   optional("shapeLayers", &Item::shapeLayers),
                   required("placement", &Item::placement),
                   optional("paidRenderFingerprints", &Item::paidRenderFingerprints)};
    static void settle(Item& item, const Value& object)
    {
        item.unreadableLayers =
            unreadableIn<TextLayer>(object, "layers", item.layers.size()) +
            unreadableIn<ShapeLayer>(object, "shapeLayers", item.shapeLayers.size());
    }
    // Entries of a list that are no such layer, where not all `known` were read.
    template <typename Layer>
    static qsizetype unreadableIn(const Value& object, const char* key, qsizetype known)
    {
        const auto list = object.find(key);
        if (list == object.end() || qsizetype(list->size()) == known)
            return 0;
        return std::ranges::count_if(*list, [](const Value& entry) {
            Layer layer;
            return !read(entry, layer) && !isOfUnknownSlot(entry);
        });
    }
    static bool isOfUnknownSlot(const Value& entry)
    {
        if (!entry.is_object() || !entry.contains("slot"))
            return false;
        CopySlot slot{};
        return entry["slot"].is_string() && !read(entry["slot"], slot);
    }
};

template <>
struct JsonFields<WorkspaceSnapshot> {
    using Workspace = WorkspaceSnapshot;
    static constexpr auto fields =
        std::tuple{required("format", &Workspace::format, SocialFormat::storyReel),
                   required("objective", &Workspace::objective),
                   required("selectedIndex", &Workspace::selectedIndex),
                   required("selectionAnchorIndex", &Workspace::selectionAnchorIndex),
                   required("selectedItemIDs", &Workspace::selectedItemIDs),
                   optional("selectedLayerID", &Workspace::selectedLayerID),
                   required("items", &Workspace::items)};
    static void settle(WorkspaceSnapshot& workspace, const Value& object)
    {
        if (const auto items = object.find("items"); items != object.end())
            workspace.unreadableParts = qsizetype(items->size()) - workspace.items.size();
        for (const PublicationItemSnapshot& item : std::as_const(workspace.items))
            workspace.unreadableParts += item.unreadableLayers;
    }
};

}    // namespace json

template <typename Record>
QByteArray toJson(const Record& record)
{
    return json::written(record);
}

template <typename Record>
std::optional<Record> fromJson(QByteArrayView bytes)
{
    const json::Value value = json::Value::parse(bytes.begin(), bytes.end(), nullptr, false);
    Record record;
    return json::read(value, record) ? std::optional(std::move(record)) : std::nullopt;
}

#define MOLTIVA_JSON_RECORD(Record)                                                                \
    template QByteArray toJson(const Record&);                                                     \
    template std::optional<Record> fromJson(QByteArrayView);

MOLTIVA_JSON_RECORD(CodableColor)
MOLTIVA_JSON_RECORD(CodableRect)
MOLTIVA_JSON_RECORD(ImagePlacement)
MOLTIVA_JSON_RECORD(GeneratedCopy)
MOLTIVA_JSON_RECORD(TextLayer)
MOLTIVA_JSON_RECORD(TextLayerDesign)
MOLTIVA_JSON_RECORD(ShapeLayer)
MOLTIVA_JSON_RECORD(ShapeLayerDesign)
MOLTIVA_JSON_RECORD(QList<TextLayer>)
MOLTIVA_JSON_RECORD(QList<ShapeLayer>)
MOLTIVA_JSON_RECORD(WorkspaceSnapshot)
template QByteArray toJson(const QString&);
template QByteArray toJson(const QUrl&);
template QByteArray toJson(const QUuid&);
template QByteArray toJson(const QByteArray&);
template QByteArray toJson(const QSet<QUuid>&);
template QByteArray toJson(const QSet<QString>&);
