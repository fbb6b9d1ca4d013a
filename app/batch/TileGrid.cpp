#include "app/batch/TileGrid.h"

#include "app/batch/TilePainting.h"
#include "app/controls/PartsAccessible.h"
#include "app/theme/Icons.h"
#include "app/theme/Painting.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

// Paddings around the tiles. The right one is small because the scroll bar lies beside it, but the
// outline of the current tile fits in it.
constexpr int leftPadding = 16, compactLeftPadding = 9, rightPadding = 4, topPadding = 8,
              tileGap = 10;
constexpr int tileRowGap = 12, bottomPadding = 4;
constexpr int columnUnit = 92;    // least width of a column with its gap
constexpr int ringReach = 5, tileFrameTime = 33, tileTurnTime = 1000;

// The focus ring around the grid. A widget above the viewport, because the ring also covers a part
// of the scroll bar, where the viewport cannot paint.
class GridRing : public QWidget {
public:
    explicit GridRing(QWidget* parent) : QWidget(parent)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        strokeRounded(painter, rect(), Radius::button, themeOf(this).accentLine, 2);
    }
};

}    // namespace

TileGrid::TileGrid(QWidget* parent)
    : QAbstractScrollArea(parent), m_leftPadding(leftPadding), m_ring(new GridRing(this))
{
    setAccessibleName(u"Lote"_qs);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::TabFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Always shows the scroll bar, so that the number of columns does not depend on it. While there
    // is nothing to scroll, the bar paints nothing.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    verticalScrollBar()->setSingleStep(48);
    viewport()->setAttribute(Qt::WA_Hover);
    viewport()->setAutoFillBackground(false);
    m_wishLater.setSingleShot(true);
    m_wishLater.setInterval(0);
    connect(&m_wishLater, &QTimer::timeout, this, &TileGrid::wish);
    m_spin.setInterval(tileFrameTime);
    connect(&m_spin, &QTimer::timeout, this, &TileGrid::spin);
}

void TileGrid::setTiles(const QList<Tile>& tiles)
{
    const auto selected = std::ranges::count_if(tiles, &Tile::selected);
    const bool allDiffer = tiles.size() != m_tiles.size() || (selected > 1) != m_severalSelected;
    const int formerIndex = currentIndex();
    const Tile former = formerIndex >= 0 ? m_tiles[formerIndex] : Tile();
    const QString formerName = formerIndex >= 0 ? accessibleText(formerIndex) : QString();
    const QList<Tile> before = std::exchange(m_tiles, tiles);
    m_severalSelected = selected > 1;

    if (allDiffer) {
        fitScrollBar();
        viewport()->update();
    } else {
        for (int i = 0; i < tiles.size(); ++i) {
            if (!(before[i] == tiles[i]))
                updateTile(i);
        }
    }
    if (m_hovered >= tiles.size())
        m_hovered = -1;
    const bool generating =
        std::ranges::any_of(tiles, [](const Tile& t) { return t.state == TileState::generating; });
    if (generating)
        m_spin.start();
    else
        m_spin.stop();

    const int current = currentIndex();
    if (current >= 0 && tiles[current].id != former.id) {
        showCurrent();
        if (hasFocus())
            tellPart(this, QAccessible::Focus, current);
    } else if (current >= 0) {
        if (accessibleText(current) != formerName)
            tellPart(this, QAccessible::NameChanged, current);
        if (tiles[current].warnings != former.warnings || tiles[current].answer != former.answer)
            tellPart(this, QAccessible::DescriptionChanged, current);
    }
    forgetDistant();
    wishLater();
}

void TileGrid::setRatio(double ratio)
{
    if (ratio <= 0 || ratio == m_ratio)
        return;
    m_ratio = ratio;
    fitScrollBar();
    showCurrent();
    viewport()->update();
    wishLater();
}

void TileGrid::setClass(WindowClass windowClass)
{
    m_leftPadding = windowClass == WindowClass::compact ? compactLeftPadding : leftPadding;
    fitScrollBar();
    showCurrent();
    viewport()->update();
    wishLater();
}

void TileGrid::setPicture(QUuid id, const QImage& picture)
{
    const auto tile = std::ranges::find(m_tiles, id, &Tile::id);
    if (tile == m_tiles.end())
        return;
    m_pictures.insert(id, {roundedPicture(picture, Radius::thumbnail * devicePixelRatioF())});
    updateTile(int(tile - m_tiles.begin()));
    forgetDistant();
}

void TileGrid::pictureOutdated(QUuid id)
{
    const auto picture = m_pictures.find(id);
    if (picture != m_pictures.end())
        picture->outdated = true;
    m_wished.clear();
    wishLater();
}

QSize TileGrid::tileSize() const
{
    const int inner = std::max(1, viewport()->width() - m_leftPadding - rightPadding);
    // Rounds the width up, so that a gap is never wider than tileGap, though it may be a pixel
    // narrower.
    const int width = std::max(1, (inner - (columns() - 1) * tileGap + columns() - 1) / columns());
    return {width, std::max(1, qRound(width / m_ratio))};
}

int TileGrid::columns() const
{
    const int inner = viewport()->width() - m_leftPadding - rightPadding;
    return std::max(1, (inner + tileGap) / columnUnit);
}

int TileGrid::rowPitch() const
{
    return tileSize().height() + tileCaptionGap + tileCaptionHeight + tileRowGap;
}

QSize TileGrid::picturePixels() const
{
    const QSizeF pixels = QSizeF(tileSize()) * devicePixelRatioF();
    return {qRound(pixels.width()), qRound(pixels.height())};
}

int TileGrid::currentIndex() const
{
    const auto current = std::ranges::find_if(m_tiles, &Tile::current);
    return current == m_tiles.end() ? -1 : int(current - m_tiles.begin());
}

QRect TileGrid::tileRect(int index) const
{
    const int count = columns();
    const QSize size = tileSize();
    const int inner = viewport()->width() - m_leftPadding - rightPadding;
    // Spreads the rounding of the tile width over all gaps between the columns.
    const int column = index % count;
    const int left = count == 1 ? 0 : column * (inner - size.width()) / (count - 1);
    return {QPoint(m_leftPadding + left,
                   topPadding + index / count * rowPitch() - verticalScrollBar()->value()),
            size};
}

int TileGrid::tileAt(QPoint position) const
{
    const int row = (position.y() + verticalScrollBar()->value() - topPadding) / rowPitch();
    for (int column = 0; column < columns(); ++column) {
        const int index = row * columns() + column;
        if (index >= 0 && index < m_tiles.size() &&
            tileRect(index)
                .adjusted(0, 0, 0, tileCaptionGap + tileCaptionHeight)
                .contains(position))
            return index;
    }
    return -1;
}

QList<int> TileGrid::visibleTiles() const
{
    const int top = verticalScrollBar()->value() - topPadding;
    const int firstRow = std::max(0, top / rowPitch());
    const int lastRow = std::max(0, (top + viewport()->height()) / rowPitch());
    QList<int> visible;
    const int end = std::min(int(m_tiles.size()), (lastRow + 1) * columns());
    for (int i = firstRow * columns(); i < end; ++i) {
        if (tileRect(i).intersects(viewport()->rect()))
            visible.append(i);
    }
    return visible;
}

void TileGrid::fitScrollBar()
{
    const int rows = (int(m_tiles.size()) + columns() - 1) / columns();
    const int content = topPadding + rows * rowPitch() - tileRowGap + bottomPadding;
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setRange(0, std::max(0, content - viewport()->height()));
}

void TileGrid::showCurrent()
{
    const int current = currentIndex();
    if (current < 0)
        return;
    const QRect tile = tileRect(current).adjusted(
        0, -topPadding, 0, tileCaptionGap + tileCaptionHeight + bottomPadding);
    QScrollBar* bar = verticalScrollBar();
    if (tile.bottom() >= viewport()->height())
        bar->setValue(bar->value() + tile.bottom() + 1 - viewport()->height());
    const QRect moved = tileRect(current).adjusted(0, -topPadding, 0, 0);
    if (moved.top() < 0)    // a tile higher than the viewport shows its top
        bar->setValue(bar->value() + moved.top());
}

void TileGrid::wishLater()
{
    if (isVisible())
        m_wishLater.start();
}

void TileGrid::wish()
{
    const QSize pixels = picturePixels();
    QList<QUuid> ids;
    for (const int index : visibleTiles()) {
        const auto picture = m_pictures.constFind(m_tiles[index].id);
        if (picture == m_pictures.constEnd() || picture->outdated ||
            picture->image.size() != pixels)
            ids.append(m_tiles[index].id);
    }
    if (ids == m_wished && pixels == m_wishedPixels)
        return;
    m_wished = ids;
    m_wishedPixels = pixels;
    Q_EMIT picturesWanted(ids, pixels);
}

void TileGrid::forgetDistant()
{
    const QList<int> visible = visibleTiles();
    const int reach = int(visible.size());
    // Drops nothing up to five times as many pictures as are visible. Beyond that, keeps three
    // times as many: the visible ones, and as many before and after them.
    if (m_pictures.size() <= qsizetype(5) * std::max(reach, 1))
        return;
    QSet<QUuid> near;
    const int first = visible.isEmpty() ? 0 : std::max(0, visible.first() - reach);
    const int last =
        visible.isEmpty() ? -1 : std::min(int(m_tiles.size()) - 1, visible.last() + reach);
    for (int i = first; i <= last; ++i)
        near.insert(m_tiles[i].id);
    m_pictures.removeIf([&](const auto& picture) { return !near.contains(picture.key()); });
}

void TileGrid::setHovered(int index)
{
    if (index == m_hovered)
        return;
    updateTile(std::exchange(m_hovered, index));
    updateTile(index);
}

void TileGrid::updateTile(int index)
{
    if (index < 0 || index >= m_tiles.size())
        return;
    viewport()->update(tileRect(index).adjusted(-ringReach, -ringReach, ringReach,
                                                tileCaptionGap + tileCaptionHeight));
}

void TileGrid::spin()
{
    m_turn = std::fmod(m_turn + double(tileFrameTime) / tileTurnTime, 1.0);
    for (const int index : visibleTiles()) {
        if (m_tiles[index].state == TileState::generating)
            updateTile(index);
    }
}

bool TileGrid::viewportEvent(QEvent* event)
{
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
        setHovered(tileAt(static_cast<QHoverEvent*>(event)->position().toPoint()));
        break;
    case QEvent::HoverLeave:
        setHovered(-1);
        break;
    case QEvent::ScreenChangeInternal:    // another device pixel ratio needs other pictures
        wishLater();
        break;
    case QEvent::ToolTip: {
        const auto* help = static_cast<QHelpEvent*>(event);
        const int index = tileAt(help->pos());
        if (index < 0) {
            QToolTip::hideText();
            return true;
        }
        QToolTip::showText(help->globalPos(), plainToolTip(toolTipOf(m_tiles[index])), viewport(),
                           tileRect(index));
        return true;
    }
    default:
        break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void TileGrid::resizeEvent(QResizeEvent*)
{
    m_ring->setGeometry(6, 0, viewport()->width() - 3, height());
    fitScrollBar();
    showCurrent();
    wishLater();
}

void TileGrid::scrollContentsBy(int, int)
{
    setHovered(viewport()->underMouse() ? tileAt(viewport()->mapFromGlobal(QCursor::pos())) : -1);
    viewport()->update();
    forgetDistant();
    wishLater();
}

void TileGrid::showEvent(QShowEvent* event)
{
    QAbstractScrollArea::showEvent(event);
    fitScrollBar();
    showCurrent();
    wishLater();
}

void TileGrid::mousePressEvent(QMouseEvent* event)
{
    const int index = tileAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index >= 0)
        Q_EMIT clicked(index, event->modifiers());
}

void TileGrid::contextMenuEvent(QContextMenuEvent* event)
{
    const bool keyboard = event->reason() == QContextMenuEvent::Keyboard;
    const int index = keyboard ? currentIndex() : tileAt(event->pos());
    if (index < 0)
        return;
    const QPoint position =
        keyboard ? viewport()->mapToGlobal(tileRect(index).center()) : event->globalPos();
    Q_EMIT contextMenuRequested(index, position);
}

void TileGrid::keyPressEvent(QKeyEvent* event)
{
    const int last = int(m_tiles.size()) - 1;
    const int current = currentIndex();
    int target = -1;
    switch (event->key()) {
    case Qt::Key_Left:
        target = current - 1;
        break;
    case Qt::Key_Right:
        target = current + 1;
        break;
    case Qt::Key_Up:
        target = current - columns();
        break;
    case Qt::Key_Down:
        target = current + columns();
        break;
    case Qt::Key_Home:
        target = 0;
        break;
    case Qt::Key_End:
        target = last;
        break;
    default:
        event->ignore();    // leaves the key to the window
        return;
    }
    if (target >= 0 && target <= last && target != current)
        Q_EMIT clicked(target, event->modifiers() & Qt::ShiftModifier);
}

void TileGrid::focusInEvent(QFocusEvent* event)
{
    m_ring->setVisible(event->reason() == Qt::TabFocusReason ||
                       event->reason() == Qt::BacktabFocusReason ||
                       event->reason() == Qt::ShortcutFocusReason);
    m_ring->raise();
}

void TileGrid::focusOutEvent(QFocusEvent*)
{
    m_ring->hide();
}

QString TileGrid::accessibleText(int index) const
{
    return u"Imagen %1 de %2, "_qs.arg(index + 1).arg(m_tiles.size()) + spokenTile(m_tiles[index]);
}

void TileGrid::paintEvent(QPaintEvent* event)
{
    const Theme& theme = themeOf(this);
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(event->rect(), theme.panel);
    if (m_tiles.isEmpty())
        return paintEmptyTiles(painter);
    const int reach = tileCaptionGap + tileCaptionHeight;
    const int top = event->rect().top() + verticalScrollBar()->value() - topPadding - reach;
    const int bottom = event->rect().bottom() + verticalScrollBar()->value() - topPadding + reach;
    const int first = std::max(0, top / rowPitch()) * columns();
    const int end =
        std::min(int(m_tiles.size()), (std::max(0, bottom / rowPitch()) + 1) * columns());
    for (int i = first; i < end; ++i) {
        if (tileRect(i)
                .adjusted(-ringReach, -ringReach, ringReach, reach)
                .intersects(event->rect()))
            paintTile(painter, i);
    }
}

void TileGrid::paintTile(QPainter& painter, int index) const
{
    const auto picture = m_pictures.constFind(m_tiles[index].id);
    ::paintTile(
        painter, themeOf(this),
        {.tile = m_tiles[index],
         .number = index + 1,
         .box = tileRect(index),
         .picture = picture == m_pictures.constEnd() ? QImage() : picture->image,
         .isExact = picture != m_pictures.constEnd() && picture->image.size() == picturePixels(),
         .isHovered = index == m_hovered,
         .isOneOfSeveral = m_tiles[index].selected && m_severalSelected,
         .turn = m_turn});
}

// Paints placeholders for an empty batch, paler with every row.
void TileGrid::paintEmptyTiles(QPainter& painter) const
{
    for (int row = 0; row < 6; ++row) {
        painter.setOpacity(std::pow(0.68, row));
        for (int column = 0; column < columns(); ++column)
            paintEmptyTile(painter, themeOf(this), tileRect(row * columns() + column));
    }
    painter.setOpacity(1);
}
