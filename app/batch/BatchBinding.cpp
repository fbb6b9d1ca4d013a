#include "app/batch/BatchBinding.h"

#include "app/batch/BatchColumn.h"
#include "canvas/WarningSentences.h"
#include "studio/StudioSession.h"

#include <QTimer>

namespace {
constexpr std::chrono::milliseconds tickTime{1200};
}

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
    connect(&session, &StudioSession::costsChanged, this, &BatchBinding::showTiles);
    connect(&session, &StudioSession::copyChanged, this, &BatchBinding::followCopy);
}

// The items that a running import has accepted so far; empty while no import runs.
const PublicationItems& BatchBinding::incoming() const
{
    static const PublicationItems nothing;
    const Activity* import = m_session.activities().find(Activity::Kind::importing);
    return import ? import->incoming : nothing;
}

// While an import runs, the batch of the session is still the old one: a click on a tile would
// select another image than the tile shows.
bool BatchBinding::showsIncoming() const
{
    return !incoming().isEmpty();
}

const PublicationItems& BatchBinding::shownItems() const
{
    return showsIncoming() ? incoming() : m_session.batch().items;
}

const PublicationItem* BatchBinding::find(QUuid id) const
{
    for (const PublicationItems* items : {&shownItems(), &m_session.batch().items}) {
        const auto found = std::ranges::find(*items, id, &PublicationItem::id);
        if (found != items->end())
            return &*found;
    }
    return nullptr;
}

void BatchBinding::wish(const QList<QUuid>& ids)
{
    m_wished = ids;
    ask();
}

void BatchBinding::watch(const QList<QUuid>& items)
{
    if (std::exchange(m_watched, items) != items)
        ask();
}

void BatchBinding::ask()
{
    QList<PublicationItem> items;
    QList<QUuid> judged = m_watched;
    // The current item is drawn even while its tile is out of view: the side panel shows its
    // warnings.
    if (const PublicationItem* current = m_session.batch().currentItem();
        current && !judged.contains(current->id))
        judged.prepend(current->id);
    for (const QUuid& id : std::as_const(judged)) {
        if (isUnasked(id))
            items.append(*find(id));
    }
    if (m_column->grid()->isVisible()) {
        for (const QUuid& id : m_wished) {
            if (const PublicationItem* item = find(id))
                items.append(*item);
        }
    }
    m_pictures->want(items, m_session.batch().format, m_column->grid()->picturePixels());
}

bool BatchBinding::columnAsksFor(QUuid item) const
{
    const TileGrid* grid = m_column->grid();
    return grid->isVisible() && std::ranges::any_of(grid->visibleTiles(), [&](int index) {
               return grid->tiles()[index].id == item;
           });
}

bool BatchBinding::isJudged(QUuid item) const
{
    const PublicationItem* found = find(item);
    return found && isJudged(*found);
}

bool BatchBinding::isJudged(const PublicationItem& item) const
{
    const auto known = m_judgements.constFind(item.id);
    return known != m_judgements.cend() && known->of.item == item &&
           known->of.format == m_session.batch().format;
}

// Whether the item is to be judged, and no tile in view has it drawn.
bool BatchBinding::isUnasked(QUuid item) const
{
    const PublicationItem* found = find(item);
    return found && !isJudged(*found) && !columnAsksFor(item);
}

QList<TextWarning> BatchBinding::warningsOf(QUuid item) const
{
    const auto known = m_judgements.constFind(item);
    return known != m_judgements.cend() ? known->warnings : QList<TextWarning>();
}

void BatchBinding::showPicture(const TileRequest& request, const QImage& picture, PhotoState photo,
                               const QList<TextWarning>& warnings)
{
    const PublicationItem* item = find(request.item.id);
    if (picture.isNull() || !item)
        return;
    // Trusts only PhotoState::missing: a thumbnail from the cache does not prove that the file
    // still exists.
    if (photo == PhotoState::missing)
        setMissing(request.item.id, true);
    // Drops a picture of an earlier state of the item: a newer one is on its way, and until it
    // comes the previous warnings stay.
    if (!(*item == request.item) || m_session.batch().format != request.format)
        return;
    m_wished.removeOne(request.item.id);
    m_column->setPicture(request.item.id, picture);
    judge(request, warnings);
}

void BatchBinding::judge(const TileRequest& request, const QList<TextWarning>& warnings)
{
    const QUuid id = request.item.id;
    Judgement& known = m_judgements[id];
    known.of = request;
    if (known.warnings != warnings) {
        known.warnings = warnings;
        known.sentences = warningSentences(warnings);
        show();
        Q_EMIT warningsChanged(id);
    }
    Q_EMIT judged(id);
}

void BatchBinding::forgetGone()
{
    QSet<QUuid> there;
    for (const PublicationItems* items : {&shownItems(), &m_session.batch().items}) {
        for (const PublicationItem& item : *items)
            there.insert(item.id);
    }
    m_judgements.removeIf([&](const auto& known) { return !there.contains(known.key()); });
}

void BatchBinding::photoFound(QUuid item)
{
    if (!m_missing.contains(item))
        return;
    // Makes the item count as not judged, but keeps the warnings found without the photo until the
    // next picture is drawn.
    m_judgements[item].of = {};
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

TileState BatchBinding::stateOf(QUuid item) const
{
    switch (m_session.copy().stateOf(item)) {
    case CopyState::queued:
        return TileState::queued;
    case CopyState::generating:
        return TileState::generating;
    case CopyState::waiting:
        return TileState::waiting;
    case CopyState::none:
    case CopyState::generated:
    case CopyState::unanswered:
        break;
    }
    if (m_missing.contains(item))
        return TileState::missing;
    if (m_session.copy().stateOf(item) == CopyState::unanswered)
        return TileState::unanswered;
    return m_ticked.contains(item) ? TileState::generated : TileState::normal;
}

void BatchBinding::showTiles()
{
    m_column->setTiles(tilesOf(shownItems()));
}

// Gives each item a tick for a moment when its texts have been generated.
void BatchBinding::followCopy()
{
    for (const PublicationItem& item : m_session.batch().items) {
        const QUuid id = item.id;
        if (m_session.copy().stateOf(id) != CopyState::generated) {
            m_generated.remove(id);
        } else if (!m_generated.contains(id)) {
            m_generated.insert(id);
            m_ticked.insert(id);
            QTimer::singleShot(tickTime, this, [this, id] {
                m_ticked.remove(id);
                showTiles();
            });
        }
    }
    showTiles();
}

QList<Tile> BatchBinding::tilesOf(const PublicationItems& items)
{
    const Batch& batch = m_session.batch();
    const bool incoming = showsIncoming();
    QList<Tile> tiles;
    tiles.reserve(items.size());
    for (qsizetype i = 0; i < items.size(); ++i) {
        const PublicationItem& item = items[i];
        QString& name = m_names[item.id];
        if (name.isNull())
            name = item.filename();
        const auto known = m_judgements.constFind(item.id);
        tiles.append({.id = item.id,
                      .name = name,
                      .current = !incoming && i == batch.selectedIndex,
                      .selected = !incoming && batch.selectedItemIDs.contains(item.id),
                      .state = incoming ? TileState::normal : stateOf(item.id),
                      .paid = !incoming && m_session.exports().isPaid(item.id),
                      .answer = m_session.copy().whyUnanswered(item.id),
                      .warnings = known != m_judgements.cend() ? known->sentences : QStringList()});
    }
    return tiles;
}

void BatchBinding::show()
{
    const Batch& batch = m_session.batch();
    const PublicationItems& items = shownItems();
    showTiles();

    const bool otherFormat = m_knownFormat != batch.format;
    const bool sameOrder = m_known.size() == items.size();
    bool cameOrWent = !sameOrder;
    QHash<QUuid, qsizetype> places;
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (otherFormat) {
            m_column->pictureOutdated(items[i].id);
            continue;
        }
        if (sameOrder && m_known.shares(i, items, i))
            continue;
        // Finds the former index of the item by its id: items may have come, gone or moved.
        if (places.isEmpty()) {
            for (qsizetype k = 0; k < m_known.size(); ++k)
                places.insert(m_known[k].id, k);
        }
        const qsizetype before = places.value(items[i].id, -1);
        cameOrWent |= before < 0;
        // An item that was removed and has come back may still have its picture in the column, but
        // forgetGone() has dropped its warnings.
        const bool isOutdated =
            before < 0 ? !isJudged(items[i])
                       : !m_known.shares(before, items, i) && !(m_known[before] == items[i]);
        if (isOutdated)
            m_column->pictureOutdated(items[i].id);
    }
    if (cameOrWent)
        forgetGone();
    m_known = items;
    m_knownFormat = batch.format;
    if (m_names.size() > 2 * items.size() + 100)
        m_names.clear();
    const auto isWaiting = [this](QUuid id) { return isUnasked(id); };
    const PublicationItem* current = batch.currentItem();
    if ((current && isWaiting(current->id)) || std::ranges::any_of(m_watched, isWaiting))
        ask();
}
