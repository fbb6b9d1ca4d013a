#include "model/Json.h"

#include "model/RecordJson.h"
#include "model/WorkspaceSnapshot.h"

namespace json {

template <>
struct JsonFields<PublicationItemSnapshot> {
    using Item = PublicationItemSnapshot;
    static constexpr auto fields =
        std::tuple{required("id", &Item::id),
                   required("url", &Item::url),
                   lenient("bookmarkData", &Item::bookmarkData),
                   required("analysis", &Item::analysis),
                   optional("isCaptionOwn", &Item::isCaptionOwn),
                   required("layers", &Item::layers),
                   optional("shapeLayers", &Item::shapeLayers),
                   required("placement", &Item::placement),
                   optional("paidRenderFingerprints", &Item::paidRenderFingerprints)};
    static void repair(Item& item, const Value& object)
    {
        item.unreadableLayers =
            unreadableIn<TextLayer>(object, "layers", item.layers.size()) +
            unreadableIn<ShapeLayer>(object, "shapeLayers", item.shapeLayers.size());
    }
    // Number of entries of the list at `key` that cannot be read as a Layer. `known` is the number
    // of those that were read. Layers of an unknown slot do not count.
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
    static void repair(WorkspaceSnapshot& workspace, const Value& object)
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
MOLTIVA_JSON_RECORD(PublicationItemSnapshot)
MOLTIVA_JSON_RECORD(WorkspaceSnapshot)
template QByteArray toJson(const QString&);
template QByteArray toJson(const QUrl&);
template QByteArray toJson(const QUuid&);
template QByteArray toJson(const QByteArray&);
template QByteArray toJson(const QSet<QUuid>&);
template QByteArray toJson(const QSet<QString>&);
