#include "app/BatchBinding.h"

#include "app/BatchColumn.h"
#include "studio/StudioSession.h"

BatchBinding::BatchBinding(StudioSession& session, BatchColumn* column,
                           const std::shared_ptr<PhotoCache>& photos)
    : m_session(session), m_column(column), m_pictures(new TilePictures(photos, this))
{
    connect(column, &BatchColumn::clicked, this,
            [this](int index, Qt::KeyboardModifiers modifiers) {
                if (!showsIncoming())
                    m_session.selectItem(index, modifiers);
            });
    connect(column, &BatchColumn::picturesWanted, this, &BatchBinding::wish);
    connect(m_pictures, &TilePictures::ready, this, &BatchBinding::showPicture);
}

// While an import runs the batch is still the old one, and a click in the column would mean another
// image than the one under it.
bool BatchBinding::showsIncoming() const
{
    return m_session.isImporting() && !m_session.importProgress().accepted.isEmpty();
}

const PublicationItems& BatchBinding::shownItems() const
{
    return showsIncoming() ? m_session.importProgress().accepted : m_session.batch().items;
}

void BatchBinding::wish(const QList<QUuid>& ids, QSize pixels)
{
    QList<PublicationItem> items;
    for (const QUuid& id : ids) {
        const auto& shown = shownItems();
        const auto found = std::ranges::find(shown, id, &PublicationItem::id);
        if (found != shown.end())
            items.append(*found);
    }
    m_pictures->want(items, m_session.batch().format, pixels);
}

void BatchBinding::showPicture(const TileRequest& request, const QImage& picture, PhotoState photo)
{
    // A picture begun before the last change comes too late: the newer one is on its way.
    const auto& items = shownItems();
    const auto item = std::ranges::find(items, request.item.id, &PublicationItem::id);
    if (picture.isNull() || item == items.end())
        return;
    // A thumbnail that is at hand says nothing of the file.
    if (photo == PhotoState::missing)
        setMissing(request.item.id, true);
    if (*item == request.item && m_session.batch().format == request.format)
        m_column->setPicture(request.item.id, picture);
}

void BatchBinding::photoFound(QUuid item)
{
    if (!m_missing.contains(item))
        return;
    setMissing(item, false);
    m_column->pictureOutdated(item);
}

void BatchBinding::photoMissing(QUuid item)
{
    setMissing(item, true);
}

void BatchBinding::setMissing(QUuid item, bool missing)
{
    if (missing == m_missing.contains(item))
        return;
    if (missing)
        m_missing.insert(item);
    else
        m_missing.remove(item);
    show();
}

void BatchBinding::show()
{
    const Batch& batch = m_session.batch();
    const PublicationItems& items = shownItems();
    const bool incoming = showsIncoming();
    QList<Tile> tiles;
    tiles.reserve(items.size());
    for (qsizetype i = 0; i < items.size(); ++i) {
        const PublicationItem& item = items[i];
        QString& name = m_names[item.id];
        if (name.isNull())
            name = item.filename();
        tiles.append(
            {.id = item.id,
             .name = name,
             .current = !incoming && i == batch.selectedIndex,
             .selected = !incoming && batch.selectedItemIDs.contains(item.id),
             .state = m_missing.contains(item.id) ? TileState::missing : TileState::normal});
    }
    m_column->setTiles(tiles);

    const bool otherFormat = m_knownFormat != batch.format;
    const bool sameOrder = m_known.size() == items.size();
    QHash<QUuid, qsizetype> places;
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (otherFormat) {
            m_column->pictureOutdated(items[i].id);
            continue;
        }
        if (sameOrder && m_known.shares(i, items, i))
            continue;
        // Found by its id where items came or went.
        if (places.isEmpty()) {
            for (qsizetype k = 0; k < m_known.size(); ++k)
                places.insert(m_known[k].id, k);
        }
        const qsizetype before = places.value(items[i].id, -1);
        if (before >= 0 && !m_known.shares(before, items, i) && !(m_known[before] == items[i]))
            m_column->pictureOutdated(items[i].id);
    }
    m_known = items;
    m_knownFormat = batch.format;
    if (m_names.size() > 2 * items.size() + 100)
        m_names.clear();
}
