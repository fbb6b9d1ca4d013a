#include "app/PresetGrid.h"

#include "app/controls/KeyboardFocus.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace {
constexpr int columnGap = 10, rowGap = 12, previewAfter = 300;    // ms
}

PresetGrid::PresetGrid(const QString& name, PresetOwner owner, QWidget* parent)
    : QWidget(parent), m_name(name), m_owner(owner)
{
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(name);
    hide();    // until there is something in it
    m_resting.setSingleShot(true);
    m_resting.setInterval(previewAfter);
    connect(&m_resting, &QTimer::timeout, this, [this] {
        m_previewed = m_restedOn;
        Q_EMIT previewWanted(m_previewed);
    });
}

void PresetGrid::setShape(int columns, double ratio)
{
    if (columns == m_columns && ratio == m_ratio)
        return;
    m_columns = columns;
    m_ratio = ratio;
    outdatePictures();
    place();
}

void PresetGrid::setPresets(const QList<Preset>& presets)
{
    if (presets == m_presets)
        return;
    const QUuid marked = m_marked < m_presets.size() ? m_presets[m_marked].id : QUuid();
    QList<PresetTile*> old = std::exchange(m_tiles, {});
    for (const Preset& preset : presets) {
        const auto known = std::ranges::find_if(
            old, [&](const PresetTile* tile) { return tile->preset().id == preset.id; });
        PresetTile* tile = known != old.end() ? *known : newTile();
        if (known != old.end())
            old.erase(known);
        tile->setPreset(preset);
        tile->setRefusal(m_refusal);
        m_tiles.append(tile);
    }
    for (PresetTile* gone : old) {
        gone->hide();
        gone->deleteLater();
    }
    m_presets = presets;
    setVisible(!presets.isEmpty());
    place();
    // The mark goes with its preset; where that is gone, to the one that took its place.
    const auto same = std::ranges::find(presets, marked, &Preset::id);
    const int last = std::max(0, int(presets.size()) - 1);
    m_marked = same != presets.end() ? int(same - presets.begin()) : std::clamp(m_marked, 0, last);
    if (hasFocus() && same == presets.end())
        mark(m_marked);
    else if (hasFocus())
        tellMarked();
}

void PresetGrid::setRefusal(const QString& reason)
{
    m_refusal = reason;
    for (PresetTile* tile : std::as_const(m_tiles))
        tile->setRefusal(reason);
}

PresetTile* PresetGrid::newTile()
{
    auto* tile = new PresetTile(m_owner, this);
    tile->show();
    connect(tile, &PresetTile::clicked, this, [this, tile] {
        leave();
        if (m_refusal.isEmpty())
            Q_EMIT chosen(tile->preset().id);
    });
    connect(tile, &PresetTile::pointedAt, this, [this, tile] { rest(tile->preset().id); });
    connect(tile, &PresetTile::pointerLeft, this, &PresetGrid::leave);
    connect(tile, &PresetTile::pictureWanted, this,
            [this, tile] { Q_EMIT pictureWanted(tile->preset().id); });
    connect(tile, &PresetTile::menuRequested, this, [this, tile](QPoint position) {
        leave();
        Q_EMIT menuRequested(tile->preset().id, position);
    });
    connect(tile, &PresetTile::renamed, this,
            [this, tile](const QString& name) { Q_EMIT renamed(tile->preset().id, name); });
    // By Enter or Esc the focus belongs to nobody; pressed elsewhere, to what was pressed.
    connect(tile, &PresetTile::renameEnded, this, [this] {
        if (std::exchange(m_isRenamedByKey, false) && !QApplication::focusWidget())
            setFocus(Qt::ShortcutFocusReason);
    });
    return tile;
}

QSize PresetGrid::picturePixels() const
{
    return m_tiles.isEmpty() ? QSize() : m_tiles.first()->picturePixels();
}

PresetTile* PresetGrid::tile(QUuid id) const
{
    const auto found = std::ranges::find_if(
        m_tiles, [id](const PresetTile* tile) { return tile->preset().id == id; });
    return found == m_tiles.cend() ? nullptr : *found;
}

void PresetGrid::setPicture(QUuid id, const QImage& picture)
{
    if (PresetTile* shown = tile(id))
        shown->setPicture(picture);
}

void PresetGrid::outdatePicture(QUuid id)
{
    if (PresetTile* shown = tile(id))
        shown->outdatePicture();
}

void PresetGrid::outdatePictures()
{
    for (PresetTile* tile : std::as_const(m_tiles))
        tile->outdatePicture();
}

void PresetGrid::rename(QUuid id)
{
    if (PresetTile* shown = tile(id))
        shown->rename();
}

void PresetGrid::place()
{
    const int across = std::max(1, (width() - (m_columns - 1) * columnGap) / m_columns);
    const int down = PresetTile::heightFor(across, m_ratio);
    for (int i = 0; i < m_tiles.size(); ++i) {
        m_tiles[i]->setGeometry(i % m_columns * (across + columnGap),
                                i / m_columns * (down + rowGap), across, down);
    }
    const int rows = (int(m_tiles.size()) + m_columns - 1) / m_columns;
    setFixedHeight(std::max(0, rows * (down + rowGap) - rowGap));
}

void PresetGrid::resizeEvent(QResizeEvent*)
{
    place();
}

void PresetGrid::rest(QUuid id)
{
    leave();
    m_restedOn = id;
    m_resting.start();
}

void PresetGrid::leave()
{
    m_resting.stop();
    if (!std::exchange(m_previewed, QUuid()).isNull())
        Q_EMIT previewEnded();
}

// A ring round the tile that the keyboard is on, which is told and previewed.
void PresetGrid::mark(int index)
{
    if (index < 0 || index >= m_tiles.size())
        return;
    if (m_marked < m_tiles.size())
        KeyboardFocus::left(m_tiles[m_marked]);
    m_marked = index;
    PresetTile* tile = m_tiles[index];
    const QFocusEvent byKeyboard(QEvent::FocusIn, Qt::TabFocusReason);
    KeyboardFocus::entered(tile, &byKeyboard);
    tellMarked();
    Q_EMIT visibleAreaWanted(tile);
    rest(tile->preset().id);
}

void PresetGrid::tellMarked()
{
    const QString name =
        m_tiles.isEmpty() ? m_name
                          : u"%1: %2, %3 de %4"_s.arg(m_name, m_tiles[m_marked]->accessibleName(),
                                                      QString::number(m_marked + 1),
                                                      QString::number(m_tiles.size()));
    if (name == accessibleName())
        return;
    setAccessibleName(name);
    QAccessibleEvent changed(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&changed);
}

void PresetGrid::keyPressEvent(QKeyEvent* event)
{
    if (m_tiles.isEmpty())
        return event->ignore();
    const QUuid id = m_presets[m_marked].id;
    switch (event->key()) {
    case Qt::Key_Left:
        return mark(m_marked - 1);
    case Qt::Key_Right:
        return mark(m_marked + 1);
    case Qt::Key_Up:
        return mark(m_marked - m_columns);
    case Qt::Key_Down:
        return mark(m_marked + m_columns);
    case Qt::Key_Home:
        return mark(0);
    case Qt::Key_End:
        return mark(int(m_tiles.size()) - 1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        return m_tiles[m_marked]->click();
    case Qt::Key_F2:
        m_isRenamedByKey = true;
        return rename(id);
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        Q_EMIT removeRequested(id);
        return;
    default:
        event->ignore();
    }
}

void PresetGrid::contextMenuEvent(QContextMenuEvent* event)
{
    if (event->reason() == QContextMenuEvent::Keyboard && !m_tiles.isEmpty())
        m_tiles[m_marked]->showMenu();
}

void PresetGrid::focusInEvent(QFocusEvent* event)
{
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason ||
        event->reason() == Qt::ShortcutFocusReason)
        mark(m_marked);
}

void PresetGrid::focusOutEvent(QFocusEvent*)
{
    if (!m_tiles.isEmpty())
        KeyboardFocus::left(m_tiles[m_marked]);
    leave();
}
