#include "studio/WorkspaceStore.h"

#include "model/Json.h"
#include "model/WorkspaceSnapshot.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/ImageAccess.h"
#include "studio/WorkspaceEncoder.h"
#include "studio/batch/BatchSelection.h"

#include <QCoroFuture>

#include <vector>

using namespace Qt::StringLiterals;

namespace {

const QString workspaceKey = u"moltiva.workspaceSnapshot"_s;
const QString writerKey = u"moltiva.workspaceWriter"_s;
constexpr int mostAside = 9;

// `number` counts from 1.
QString asideKey(int number)
{
    const QString key = u"moltiva.workspaceSnapshot.setAside"_s;
    return number == 1 ? key : u"%1.%2"_s.arg(key).arg(number);
}

int asideCount(const PreferencesStore& preferences)
{
    int count = 0;
    while (count < mostAside && preferences.contains(asideKey(count + 1)))
        ++count;
    return count;
}

// One layer per slot, in slot order: the stored layer, else the default one with its text from
// `copy`.
QList<TextLayer> normalizedLayers(const QList<TextLayer>& stored, const GeneratedCopy& copy)
{
    QList<TextLayer> layers = PublicationItem::defaultLayers(copy);
    for (TextLayer& layer : layers) {
        const auto known = std::ranges::find(stored, layer.slot, &TextLayer::slot);
        if (known != stored.end())
            layer = *known;
    }
    return layers;
}

// Gives a new id to each layer whose id is already in `taken`, because commands find a layer by its
// id. Adds all ids to `taken`.
template <typename Layer>
void giveOwnIds(QList<Layer>& layers, QSet<QUuid>& taken)
{
    for (Layer& layer : layers) {
        if (taken.contains(layer.id))
            layer.id = QUuid::createUuid();
        taken.insert(layer.id);
    }
}

std::optional<PublicationItem> reopenedItem(const PublicationItemSnapshot& stored,
                                            PhotoCache& photos)
{
    const auto photo = ImageAccess::reopened(stored.url, stored.bookmarkData, photos);
    if (!photo)
        return std::nullopt;
    PublicationItem item;
    item.id = stored.id;
    item.url = stored.url;
    const QUrl file = ImageAccess::resolvedURL(stored.url, stored.bookmarkData);
    item.image = {file.toLocalFile(), photo->info.size, photo->info.reducible, photo->digest};
    item.analysis = stored.analysis;
    item.isCaptionOwn = stored.isCaptionOwn;
    item.layers = normalizedLayers(stored.layers, stored.analysis);
    item.shapeLayers = stored.shapeLayers;
    QSet<QUuid> ids;
    giveOwnIds(item.layers, ids);
    giveOwnIds(item.shapeLayers, ids);
    item.placement = stored.placement;
    item.paidRenderFingerprints = stored.paidRenderFingerprints;
    return item;
}

using Reopened = PublicationItems;

Reopened reopenedItems(const QList<PublicationItemSnapshot>& stored, PhotoCache& photos)
{
    Reopened items;
    for (const PublicationItemSnapshot& snapshot : stored) {
        try {
            if (const auto item = reopenedItem(snapshot, photos))
                items.append(*item);
        } catch (const std::exception&) {
            continue;    // out of memory: treated like a photo that cannot be read
        }
    }
    return items;
}

Batch workspaceOf(const WorkspaceSnapshot& stored, const PublicationItems& items)
{
    Batch batch;
    batch.format = stored.format;
    batch.objective = stored.objective;
    batch.items = items;
    batch.selectedIndex = stored.selectedIndex;
    batch.selectionAnchorIndex = stored.selectionAnchorIndex;
    batch.selectedItemIDs = stored.selectedItemIDs;
    batch.selectedLayerID = stored.selectedLayerID.value_or(QUuid());
    BatchSelection::keepInvariants(batch, BatchSelection::LayerRule::text);
    batch.selectedItemIDs.insert(batch.currentItem()->id);
    return batch;
}

// Drops items with the id of an earlier item, because commands find an item by its id.
PublicationItems withoutRepeatedIds(const PublicationItems& items)
{
    PublicationItems kept;
    QSet<QUuid> ids;
    for (const PublicationItem& item : items) {
        if (!ids.contains(item.id))
            kept.append(item);
        ids.insert(item.id);
    }
    return kept;
}

}    // namespace

bool WorkspaceStore::save(PreferencesStore& preferences, WorkspaceEncoder& encoder,
                          const Batch& batch)
{
    return batch.items.isEmpty() ? clear(preferences)
                                 : preferences.setValue(workspaceKey, encoder.encode(batch));
}

bool WorkspaceStore::clear(PreferencesStore& preferences)
{
    return preferences.remove(workspaceKey);
}

std::optional<QByteArray> WorkspaceStore::stored(const PreferencesStore& preferences)
{
    return preferences.value(workspaceKey);
}

std::optional<QByteArray> WorkspaceStore::writer(const PreferencesStore& preferences)
{
    return preferences.value(writerKey);
}

bool WorkspaceStore::setWriter(PreferencesStore& preferences, const QByteArray& writer)
{
    return preferences.setValue(writerKey, writer);
}

bool WorkspaceStore::setAside(PreferencesStore& preferences, const QByteArray& document)
{
    int count = asideCount(preferences);
    if (count > 0 && preferences.value(asideKey(count)) == document)
        return true;
    if (count == mostAside) {
        for (int i = 1; i < mostAside; ++i)
            preferences.setValue(asideKey(i), preferences.value(asideKey(i + 1)).value());
        --count;
    }
    return preferences.setValue(asideKey(count + 1), document);
}

bool WorkspaceStore::hasAside(const PreferencesStore& preferences)
{
    return asideCount(preferences) > 0;
}

std::optional<QByteArray> WorkspaceStore::storedAside(const PreferencesStore& preferences)
{
    return preferences.value(asideKey(asideCount(preferences)));
}

bool WorkspaceStore::clearAside(PreferencesStore& preferences)
{
    return preferences.remove(asideKey(asideCount(preferences)));
}

QCoro::Task<WorkspaceStore::Restored>
WorkspaceStore::restore(QByteArray document, std::shared_ptr<PhotoCache> photos,
                        std::function<void(qsizetype looked, qsizetype total)> looked)
{
    // A separate variable, because GCC 12 destroys a lambda in a co_await expression twice.
    QFuture<std::optional<WorkspaceSnapshot>> decoding =
        runOnWorker([document] { return fromJson<WorkspaceSnapshot>(document); });
    const std::optional<WorkspaceSnapshot> stored = co_await decoding;
    if (!stored) {
        const Restored nothing{std::nullopt, false, false};
        co_return nothing;
    }
    // Queues portions of a few items, all at once, so that the workers process them in parallel.
    constexpr qsizetype portion = 16;
    const QList<PublicationItemSnapshot>& snapshots = stored->items;
    std::vector<QFuture<Reopened>> portions;
    for (qsizetype first = 0; first < snapshots.size(); first += portion) {
        portions.push_back(runOnWorker([some = snapshots.mid(first, portion), photos] {
            return reopenedItems(some, *photos);
        }));
    }
    PublicationItems items;
    qsizetype count = 0;
    for (const QFuture<Reopened>& each : portions) {
        const Reopened some = co_await each;
        items.append(some);
        count = std::min(count + portion, snapshots.size());
        if (looked)
            looked(count, snapshots.size());
    }
    items = withoutRepeatedIds(items);
    Restored restored;
    restored.isComplete = items.size() == snapshots.size() && stored->unreadableParts == 0;
    if (!items.isEmpty())
        restored.workspace = workspaceOf(*stored, items);
    co_return restored;
}
