#include "app/batch/BatchColumn.h"

#include "app/batch/TileGridAccessible.h"
#include "app/controls/Badge.h"
#include "app/controls/Button.h"

using namespace Qt::StringLiterals;

namespace {
constexpr int batchHeaderHeight = 40, footerHeight = 44, batchColumnSide = 16, badgeGap = 6;
// Widths without the hairline at the right.
constexpr int narrowestBatch = 111, widestBatch = 479, compactBatch = 87;
constexpr int compactHeaderHeight = 32, countTop = 12, compactCountTop = 8;

// A screen reader that is already running asks for the grid's interface as soon as the grid has a
// name, so the interface must be known before.
TileGrid* newTileGrid(QWidget* parent)
{
    makeTileGridsAccessible();
    return new TileGrid(parent);
}

}    // namespace

BatchColumn::BatchColumn(QWidget* parent)
    : QWidget(parent), m_grid(newTileGrid(this)), m_count(new Badge(QString(), this)),
      m_selectedCount(new Badge(BadgeKind::accent, Icon::none, this)),
      m_selectAll(new IconButton(Icon::selectAll, u"Seleccionar todas las imágenes"_qs, 32, this)),
      m_discard(new IconButton(Icon::discard, u"Descartar imagen"_qs, 32, this))
{
    setMinimumWidth(narrowestBatch);
    setMaximumWidth(widestBatch);
    connect(m_grid, &TileGrid::picturesWanted, this, &BatchColumn::picturesWanted);
    connect(m_grid, &TileGrid::clicked, this, &BatchColumn::clicked);
    connect(m_grid, &TileGrid::contextMenuRequested, this, &BatchColumn::contextMenuRequested);
    connect(m_selectAll, &IconButton::clicked, this, &BatchColumn::selectAllRequested);
    connect(m_discard, &IconButton::clicked, this, &BatchColumn::discardRequested);
    setTiles({});
}

void BatchColumn::setTiles(const QList<Tile>& tiles)
{
    const auto selected = std::ranges::count_if(tiles, &Tile::selected);
    const bool isOther = tiles.size() != m_grid->tiles().size() || selected != m_selected;
    m_grid->setTiles(tiles);
    if (!isOther)
        return;
    m_count->setText(tiles.isEmpty() ? QString() : QString::number(tiles.size()));
    m_selectAll->setEnabled(!tiles.isEmpty());
    m_discard->setEnabled(!tiles.isEmpty());
    m_selected = selected;
    m_selectedCount->setText(QString::number(selected));
    m_selectedCount->setAccessibleName(u"%1 seleccionadas"_qs.arg(selected));
    place();
    update(0, height() - footerHeight, width(), footerHeight);
}

void BatchColumn::setRatio(double ratio)
{
    m_grid->setRatio(ratio);
}

void BatchColumn::setPicture(QUuid id, const QImage& picture)
{
    m_grid->setPicture(id, picture);
}

void BatchColumn::pictureOutdated(QUuid id)
{
    m_grid->pictureOutdated(id);
}

void BatchColumn::setClass(WindowClass windowClass)
{
    m_class = windowClass;
    const bool isCompact = windowClass == WindowClass::compact;
    setMinimumWidth(isCompact ? compactBatch : narrowestBatch);
    setMaximumWidth(isCompact ? compactBatch : widestBatch);
    m_grid->setClass(windowClass);
    place();
    update();
}

QList<QWidget*> BatchColumn::focusOrder() const
{
    return {m_grid, m_selectAll, m_discard};
}

bool BatchColumn::narrow() const
{
    return width() < 180;
}

void BatchColumn::resizeEvent(QResizeEvent*)
{
    place();
}

void BatchColumn::place()
{
    const bool isCompact = m_class == WindowClass::compact;
    const int header = isCompact ? compactHeaderHeight : batchHeaderHeight;
    m_grid->setGeometry(0, header, width(), height() - header - footerHeight);
    const QSize badge = m_count->sizeHint(), selected = m_selectedCount->sizeHint();
    m_selectedCount->setVisible(isCompact && m_selected > 1);
    if (isCompact) {
        const int beside = m_selected > 1 ? badgeGap + selected.width() : 0;
        const int left = (width() - badge.width() - beside) / 2;
        m_count->setGeometry(QRect(QPoint(left, compactCountTop), badge));
        m_selectedCount->setGeometry(
            QRect(QPoint(left + badge.width() + badgeGap, compactCountTop), selected));
    } else {
        const int title = qCeil(textWidth(Type::heading, u"Lote"_qs));
        m_count->setGeometry(QRect(QPoint(batchColumnSide + title + badgeGap, countTop), badge));
    }
    const int top = height() - footerHeight + 7;
    const int pair = 2 * 32 + 2;
    const int left = narrow() ? (width() - pair) / 2 : width() - 8 - pair;
    m_selectAll->move(left, top);
    m_discard->move(left + 34, top);
}

void BatchColumn::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.fillRect(rect(), theme.panel);
    if (m_class == WindowClass::roomy)
        paintText(painter, QRectF(batchColumnSide, countTop, width(), 20), Qt::AlignLeft,
                  Type::heading, theme.text, u"Lote"_qs);
    const QRect footer(0, height() - footerHeight, width(), footerHeight);
    painter.fillRect(footer.left(), footer.top(), footer.width(), 1, theme.line);
    if (narrow())
        return;
    QString text = m_selected == 1 ? u"1 seleccionada"_qs : u"%1 seleccionadas"_qs.arg(m_selected);
    if (m_grid->tiles().isEmpty())
        text = u"Sin imágenes"_qs;
    paintText(painter, footer.adjusted(batchColumnSide, 1, -80, 0), Qt::AlignLeft, Type::small,
              m_selected > 1 ? theme.accentText : theme.text3, text);
}
