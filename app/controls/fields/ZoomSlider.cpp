#include "app/controls/fields/ZoomSlider.h"

#include "app/theme/KeyboardFocus.h"
#include "app/theme/Painting.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QWheelEvent>

#include <utility>

using namespace Qt::StringLiterals;

namespace {
constexpr double zoomTrackHeight = 4, knobRadius = 7;
}

ZoomSlider::ZoomSlider(int lowest, int highest, QWidget* parent) : QAbstractSlider(parent)
{
    setOrientation(Qt::Horizontal);
    setRange(lowest, highest);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setProperty("focusRadius", Radius::field);
    // Screen readers do not get the unit with the value.
    setAccessibleDescription(u"%1 %"_s.arg(value()));
    connect(this, &QAbstractSlider::valueChanged, this, [this](int value) {
        setAccessibleDescription(u"%1 %"_s.arg(value));
        if (m_quiet)
            return;
        m_toldHeld |= m_held;
        Q_EMIT moved(value, m_held);
    });
}

void ZoomSlider::setShownValue(int value)
{
    const QScopedValueRollback quiet(m_quiet, true);
    setValue(value);
}

double ZoomSlider::knobAt() const
{
    const double share = double(value() - minimum()) / std::max(maximum() - minimum(), 1);
    return knobRadius + share * (width() - 2 * knobRadius);
}

int ZoomSlider::valueAt(double x) const
{
    const double share = (x - knobRadius) / std::max(width() - 2 * knobRadius, 1.0);
    return minimum() + qRound(std::clamp(share, 0.0, 1.0) * (maximum() - minimum()));
}

void ZoomSlider::finishGesture()
{
    m_held = false;
    if (std::exchange(m_toldHeld, false))
        Q_EMIT moved(value(), false);
}

void ZoomSlider::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF track(0, (height() - zoomTrackHeight) / 2, width(), zoomTrackHeight);
    fillRounded(painter, track, zoomTrackHeight / 2, theme.fill);
    const double knob = knobAt();
    if (isEnabled())
        fillRounded(painter, QRectF(track.topLeft(), QSizeF(knob, zoomTrackHeight)),
                    zoomTrackHeight / 2, theme.accentLine);
    const QRectF box(knob - knobRadius, height() / 2.0 - knobRadius, 2 * knobRadius,
                     2 * knobRadius);
    painter.setPen(QPen(theme.line2, 1));    // makes a white knob stand out from a light panel
    painter.setBrush(isEnabled() ? QColor(Qt::white) : theme.dis);
    painter.drawEllipse(box.adjusted(0.5, 0.5, -0.5, -0.5));
}

void ZoomSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return event->ignore();
    const double x = event->position().x(), knob = knobAt();
    m_held = true;
    m_grip = std::abs(x - knob) <= knobRadius ? x - knob : 0;
    setValue(valueAt(x - m_grip));
}

void ZoomSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (m_held)
        setValue(valueAt(event->position().x() - m_grip));
}

void ZoomSlider::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        finishGesture();
}

void ZoomSlider::keyPressEvent(QKeyEvent* event)
{
    m_held = event->isAutoRepeat();
    QAbstractSlider::keyPressEvent(event);
}

void ZoomSlider::keyReleaseEvent(QKeyEvent* event)
{
    if (!event->isAutoRepeat())
        finishGesture();
}

void ZoomSlider::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

// Ends a drag or a held key when the slider is hidden or disabled: it would not get the release
// event.
bool ZoomSlider::event(QEvent* event)
{
    if (event->type() == QEvent::Hide || (event->type() == QEvent::EnabledChange && !isEnabled()))
        finishGesture();
    return QAbstractSlider::event(event);
}

void ZoomSlider::focusInEvent(QFocusEvent* event)
{
    QAbstractSlider::focusInEvent(event);
    KeyboardFocus::entered(this, event);
}

void ZoomSlider::focusOutEvent(QFocusEvent* event)
{
    QAbstractSlider::focusOutEvent(event);
    KeyboardFocus::left(this);
    finishGesture();
}
