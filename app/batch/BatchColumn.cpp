#include "app/batch/BatchColumn.h"

#include "app/batch/TileGridAccessible.h"
#include "app/controls/Badge.h"
#include "app/controls/Button.h"

using namespace Qt::StringLiterals;

namespace {
constexpr int batchHeaderHeight = 40, footerHeight = 44, batchColumnSide = 16;
constexpr int narrowestBatch = 111,
              widestBatch = 479;    // both without the hairline at the right

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
    m_grid->setGeometry(0, batchHeaderHeight, width(), height() - batchHeaderHeight - footerHeight);
    const QSize badge = m_count->sizeHint();
    const int title = qCeil(textWidth(Type::heading, u"Lote"_qs));
    m_count->setGeometry(batchColumnSide + title + 6, 12, badge.width(), badge.height());
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
    paintText(painter, QRectF(batchColumnSide, 12, width(), 20), Qt::AlignLeft, Type::heading,
              theme.text, u"Lote"_qs);
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
