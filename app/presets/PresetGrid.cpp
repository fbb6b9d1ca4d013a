#include "app/presets/PresetGrid.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/fields/LineField.h"
#include "app/theme/KeyboardFocus.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace {
constexpr int columnGap = 10, presetRowGap = 12, narrowestName = 80;    // pixels
}    // namespace

PresetGrid::PresetGrid(const QString& name, QWidget* parent) : QWidget(parent), m_title(name)
{
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleRole(this, QAccessible::List);
    setAccessibleName(name);
    hide();    // until there are presets
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
    // m_marked follows its preset. If that preset is gone, the one that is now at its index is
    // marked.
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
    setAccessibleDescription(reason);
    for (PresetTile* tile : std::as_const(m_tiles))
        tile->setRefusal(reason);
}

PresetTile* PresetGrid::newTile()
{
    auto* tile = new PresetTile(this);
    tile->show();
    // Emitted even with a refusal: the receiver tells the user why.
    connect(tile, &PresetTile::clicked, this, [this, tile] { Q_EMIT chosen(tile->preset().id); });
    connect(tile, &PresetTile::pictureWanted, this,
            [this, tile] { Q_EMIT pictureWanted(tile->preset().id); });
    connect(tile, &PresetTile::menuRequested, this,
            [this, tile](QPoint position) { Q_EMIT menuRequested(tile->preset().id, position); });
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
    const PresetTile* shown = tile(id);
    if (!shown)
        return;
    if (m_name) {
        m_name->clearFocus();    // makes m_name emit edited() with the name typed so far
        endRename(RenameEnd::kept);
    }
    m_focusBefore = QApplication::focusWidget();
    m_renamed = id;
    m_name = new LineField(u"Nombre"_s, {}, Icon::none, this);
    m_name->setShown(shown->preset().name);
    placeName();
    // m_name emits edited() as soon as it loses the focus. The queued `finish` runs after that.
    connect(m_name, &LineField::edited, this,
            [this](const QString& name) { Q_EMIT renamed(m_renamed, name); });
    connect(m_name, &LineField::abandoned, this, [this] { endRename(RenameEnd::abandoned); });
    const auto finish = [this, name = m_name] {
        if (name == m_name)
            endRename(RenameEnd::kept);
    };
    connect(m_name, &LineField::editingFinished, this, finish, Qt::QueuedConnection);
    m_name->show();
    m_name->setFocus(Qt::OtherFocusReason);
    m_name->selectAll();
    bringIntoView(id);
}

// Lays m_name over the caption, and makes it wider than a caption that is too narrow for typing.
void PresetGrid::placeName()
{
    const PresetTile* shown = m_name ? tile(m_renamed) : nullptr;
    if (!shown)
        return;
    const QRect caption = shown->captionRect().translated(shown->pos());
    const int across = std::min(width(), std::max(caption.width(), narrowestName));
    m_name->setGeometry(std::min(caption.left(), width() - across), caption.top(), across,
                        m_name->height());
    m_name->raise();
}

void PresetGrid::endRename(RenameEnd end)
{
    LineField* name = std::exchange(m_name, nullptr);
    if (!name)
        return;
    const QUuid id = m_renamed;
    name->hide();
    name->deleteLater();
    // Restores the focus after Enter or Esc, which leave no widget focused. After a click
    // elsewhere, the clicked widget keeps the focus.
    if (m_focusBefore && !QApplication::focusWidget())
        m_focusBefore->setFocus(m_focusBefore == this ? Qt::ShortcutFocusReason
                                                      : Qt::OtherFocusReason);
    Q_EMIT renameEnded(id, end);
}

void PresetGrid::place()
{
    const int across = std::max(1, (width() - (m_columns - 1) * columnGap) / m_columns);
    const int down = PresetTile::heightFor(across, m_ratio);
    for (int i = 0; i < m_tiles.size(); ++i) {
        m_tiles[i]->setGeometry(i % m_columns * (across + columnGap),
                                i / m_columns * (down + presetRowGap), across, down);
    }
    const int rows = (int(m_tiles.size()) + m_columns - 1) / m_columns;
    // Adds a gap below the last row as well: m_name is higher than the caption that it covers.
    setFixedHeight(rows == 0 ? 0 : rows * (down + presetRowGap));
    placeName();
}

void PresetGrid::resizeEvent(QResizeEvent*)
{
    place();
}

// Marks a tile as the one that the keyboard is on: shows the focus ring there, and tells screen
// readers.
void PresetGrid::mark(int index)
{
    if (index < 0 || index >= m_tiles.size())
        return;
    unmark();
    m_marked = index;
    PresetTile* shown = m_tiles[index];
    const QFocusEvent byKeyboard(QEvent::FocusIn, Qt::TabFocusReason);
    KeyboardFocus::entered(shown, &byKeyboard);
    tellMarked();
    bringIntoView(shown->preset().id);
}

// Queued: by then the tiles are laid out, and a scroll area has finished scrolling to the grid as a
// whole, which it does when the grid gets the focus.
void PresetGrid::bringIntoView(QUuid id)
{
    const auto bring = [this, id] {
        if (PresetTile* shown = tile(id))
            Q_EMIT scrollToRequested(shown);
    };
    QMetaObject::invokeMethod(this, bring, Qt::QueuedConnection);
}

void PresetGrid::unmark()
{
    if (m_marked < m_tiles.size())
        KeyboardFocus::left(m_tiles[m_marked]);
}

void PresetGrid::tellMarked()
{
    const QString name =
        m_tiles.isEmpty() ? m_title
                          : u"%1: %2, %3 de %4"_s.arg(m_title, m_tiles[m_marked]->accessibleName(),
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
    if (m_tiles.isEmpty() || m_name)
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

void PresetGrid::focusOutEvent(QFocusEvent* event)
{
    // The focus ring stays on the tile while a menu or another window has the focus.
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        unmark();
}
