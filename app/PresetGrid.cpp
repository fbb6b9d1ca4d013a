#include "app/PresetGrid.h"

#include "app/controls/KeyboardFocus.h"

#include <QAccessible>
#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace {
constexpr int columnGap = 10, rowGap = 12, previewAfter = 300;    // ms
}

PresetGrid::PresetGrid(const QString& name, PresetOwner owner, QWidget* parent)
    : QWidget(parent), m_name(name), m_owner(owner)
{
    setFocusPolicy(Qt::TabFocus);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
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
    updateGeometry();
    place();
}

void PresetGrid::setPresets(const QList<Preset>& presets)
{
    if (presets == m_presets)
        return;
    QList<PresetTile*> old = std::exchange(m_tiles, {});
    for (const Preset& preset : presets) {
        const auto known = std::ranges::find_if(
            old, [&](const PresetTile* tile) { return tile->preset().id == preset.id; });
        PresetTile* tile = known != old.end() ? *known : newTile();
        if (known != old.end())
            old.erase(known);
        tile->setPreset(preset);
        m_tiles.append(tile);
    }
    for (PresetTile* gone : old) {
        gone->hide();
        gone->deleteLater();
    }
    m_presets = presets;
    m_marked = std::clamp(m_marked, 0, std::max(0, int(m_tiles.size()) - 1));
    setVisible(!presets.isEmpty());
    updateGeometry();
    place();
}

PresetTile* PresetGrid::newTile()
{
    auto* tile = new PresetTile(m_owner, this);
    tile->show();
    connect(tile, &PresetTile::clicked, this, [this, tile] {
        leave();
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

int PresetGrid::tileWidth(int width) const
{
    return std::max(1, (width - (m_columns - 1) * columnGap) / m_columns);
}

int PresetGrid::heightForWidth(int width) const
{
    const int rows = (int(m_presets.size()) + m_columns - 1) / m_columns;
    return std::max(0, rows * (PresetTile::heightFor(tileWidth(width), m_ratio) + rowGap) - rowGap);
}

QSize PresetGrid::sizeHint() const
{
    return {width(), heightForWidth(width())};
}

void PresetGrid::place()
{
    const int across = tileWidth(width()), down = PresetTile::heightFor(across, m_ratio);
    for (int i = 0; i < m_tiles.size(); ++i) {
        m_tiles[i]->setGeometry(i % m_columns * (across + columnGap),
                                i / m_columns * (down + rowGap), across, down);
    }
    setFixedHeight(heightForWidth(width()));
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
    KeyboardFocus::left(m_tiles[m_marked]);
    m_marked = index;
    const QFocusEvent byKeyboard(QEvent::FocusIn, Qt::TabFocusReason);
    KeyboardFocus::entered(m_tiles[index], &byKeyboard);
    setAccessibleName(u"%1: %2, %3 de %4"_s.arg(m_name, m_tiles[index]->accessibleName(),
                                                QString::number(index + 1),
                                                QString::number(m_tiles.size())));
    QAccessibleEvent changed(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&changed);
    Q_EMIT m_tiles[index]->pointedAt();
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
