#include "app/layers/ShapeRow.h"

#include "app/controls/popovers/Swatch.h"

using namespace Qt::StringLiterals;

namespace {
constexpr int shapeRowHeight = 44, shapeRowPadding = 12, shapeRowIconSide = 20, nameLeft = 42,
              colorSide = 20;
constexpr int deleteSide = 32, percentWidth = 46, shapeRowRadius = 10;
}    // namespace

ShapeRow::ShapeRow(QWidget* parent)
    : Control(parent),
      m_delete(new IconButton(Icon::discard, u"Eliminar forma"_s, deleteSide, this))
{
    setFixedHeight(shapeRowHeight);
    setProperty("focusRadius", shapeRowRadius);
    connect(m_delete, &IconButton::clicked, this, [this] { Q_EMIT deleteRequested(m_shape.id); });
}

void ShapeRow::setShape(const ShapeLayer& shape, const QString& name, Mark mark)
{
    if (shape == m_shape && name == text() && mark == m_mark)
        return;
    m_shape = shape;
    m_mark = mark;
    setText(name);
    setAccessibleName(mark == Mark::selected ? name + u", seleccionada"_s : name);
    m_delete->setMeaning(Icon::discard, u"Eliminar %1"_s.arg(name));
    update();
}

void ShapeRow::resizeEvent(QResizeEvent*)
{
    m_delete->move(width() - deleteSide - 6, (height() - deleteSide) / 2);
}

void ShapeRow::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool selected = m_mark == Mark::selected;
    fillRounded(painter, rect(), shapeRowRadius, mixed(theme.card, theme.hover, hovered() * 0.6));
    strokeRounded(painter, rect(), shapeRowRadius, selected ? theme.accentLine : theme.line,
                  selected ? 1.5 : 1);
    paintIcon(painter, iconNamed(row(m_shape.kind).icon),
              QRectF(shapeRowPadding, 0, shapeRowIconSide, height()), shapeRowIconSide,
              selected ? theme.accentText : theme.text2);
    // A line has no fill: shows the colour of its stroke.
    const bool line = m_shape.kind == ShapeKind::line;
    const CodableColor& color = line ? m_shape.stroke : m_shape.fill;
    const double opacity = line ? m_shape.strokeOpacity : m_shape.fillOpacity;
    const double right = m_delete->x() - 10;
    const QRectF percent(right - percentWidth, 0, percentWidth, height());
    const QRectF swatch(percent.left() - colorSide - 4, (height() - colorSide) / 2.0, colorSide,
                        colorSide);
    paintText(painter, QRectF(nameLeft, 0, swatch.left() - 8 - nameLeft, height()), Qt::AlignLeft,
              Type::bodyMedium, theme.text, text());
    paintColor(painter, swatch, color.withAlpha(1), theme);
    const double share = opacity > 0 ? std::min(opacity, 1.0) : 0.0;
    paintText(painter, percent, Qt::AlignRight, Type::small, theme.text2,
              u"%1 %"_s.arg(qRound(share * 100)), Qt::ElideNone);
}
