#include "app/controls/popovers/ColorPlane.h"

#include "app/controls/AccessibleRole.h"
#include "app/theme/KeyboardFocus.h"
#include "app/theme/Painting.h"

#include <QKeyEvent>
#include <QPainterPath>

using namespace Qt::StringLiterals;

namespace {
constexpr double planeMarkSide = 14;
}

ColorPlane::ColorPlane(ColorPlaneKind kind, const QString& name, QWidget* parent)
    : QWidget(parent), m_kind(kind)
{
    setAccessibleRole(this, QAccessible::Slider);
    setAccessibleName(name);
    nameMark();
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::CrossCursor);
    setProperty("focusRadius", Radius::field);
}

void ColorPlane::setHue(double hue)
{
    m_hue = hue;
    update();
}

void ColorPlane::nameMark()
{
    const auto percent = [](double share) { return qRound(share * 100); };
    const QString words = m_kind == ColorPlaneKind::hue
                              ? u"%1°"_s.arg(qRound(m_mark.x() * 360))
                              : u"Saturación %1 %, brillo %2 %"_s.arg(percent(m_mark.x()))
                                    .arg(percent(1 - m_mark.y()));
    if (words != accessibleDescription())
        setAccessibleDescription(words);
}

void ColorPlane::setMark(QPointF mark)
{
    m_mark = mark;
    nameMark();
    update();
}

void ColorPlane::moveTo(QPointF mark)
{
    m_mark = {std::clamp(mark.x(), 0.0, 1.0),
              m_kind == ColorPlaneKind::hue ? 0.5 : std::clamp(mark.y(), 0.0, 1.0)};
    m_holding = true;
    nameMark();
    update();
    Q_EMIT moved(m_mark, Pace::held);
}

void ColorPlane::finishGesture()
{
    if (!m_holding)
        return;
    m_holding = false;
    Q_EMIT moved(m_mark, Pace::once);
}

void ColorPlane::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF all = rect();
    QPainterPath outline;
    const double radius = std::min<double>(Radius::field, all.height() / 2);
    outline.addRoundedRect(all, radius, radius);
    QLinearGradient across(all.topLeft(), all.topRight());
    if (m_kind == ColorPlaneKind::hue) {
        for (int i = 0; i <= 6; ++i)
            across.setColorAt(i / 6.0, QColor::fromHsvF(float(i % 6) / 6.0F, 1, 1));
        painter.fillPath(outline, across);
    } else {
        across.setColorAt(0, Qt::white);
        across.setColorAt(1, QColor::fromHsvF(float(m_hue < 1 ? m_hue : 0), 1, 1));
        painter.fillPath(outline, across);
        QLinearGradient down(all.topLeft(), all.bottomLeft());
        down.setColorAt(0, Qt::transparent);
        down.setColorAt(1, Qt::black);
        painter.fillPath(outline, down);
    }
    // Insets the mark by half its size, so that all of it is visible at the edges too.
    const QPointF at(planeMarkSide / 2 + m_mark.x() * (width() - planeMarkSide),
                     planeMarkSide / 2 + m_mark.y() * (height() - planeMarkSide));
    const QRectF ring(at - QPointF(planeMarkSide, planeMarkSide) / 2,
                      QSizeF(planeMarkSide, planeMarkSide));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0, 0, 0, 110), 4));
    painter.drawEllipse(ring.adjusted(2, 2, -2, -2));
    painter.setPen(QPen(Qt::white, 2));
    painter.drawEllipse(ring.adjusted(2, 2, -2, -2));
}

void ColorPlane::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        mouseMoveEvent(event);
}

void ColorPlane::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF at = event->position() - QPointF(planeMarkSide, planeMarkSide) / 2;
    moveTo({at.x() / std::max(1.0, width() - planeMarkSide),
            at.y() / std::max(1.0, height() - planeMarkSide)});
}

void ColorPlane::mouseReleaseEvent(QMouseEvent*)
{
    finishGesture();
}

void ColorPlane::keyPressEvent(QKeyEvent* event)
{
    const double step = event->modifiers() & Qt::ShiftModifier ? 0.1 : 0.01;
    switch (event->key()) {
    case Qt::Key_Left:
        return moveTo(m_mark - QPointF(step, 0));
    case Qt::Key_Right:
        return moveTo(m_mark + QPointF(step, 0));
    case Qt::Key_Up:
        return moveTo(m_mark - QPointF(0, step));
    case Qt::Key_Down:
        return moveTo(m_mark + QPointF(0, step));
    default:
        QWidget::keyPressEvent(event);
    }
}

void ColorPlane::keyReleaseEvent(QKeyEvent* event)
{
    if (!event->isAutoRepeat())
        finishGesture();
}

void ColorPlane::focusInEvent(QFocusEvent* event)
{
    KeyboardFocus::entered(this, event);
}

void ColorPlane::focusOutEvent(QFocusEvent*)
{
    KeyboardFocus::left(this);
    finishGesture();
}

void ColorPlane::hideEvent(QHideEvent*)
{
    finishGesture();
}
