#include "app/controls/fields/Switch.h"

namespace {
constexpr double switchTrackHeight = 18, knob = 14;
}

Switch::Switch(const QString& name, QWidget* parent) : Control(parent)
{
    setCheckable(true);
    setAccessibleName(name);
    setFixedSize(32, 24);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setProperty("focusRadius", 11);
}

void Switch::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF track(0, (height() - switchTrackHeight) / 2, width(), switchTrackHeight);
    // A grey from which the white knob stands out, and which stands out from the panel.
    const QColor off = mixed(theme.dis, theme.text3, 0.6 + 0.1 * hovered());
    QColor ground = isChecked() ? mixed(theme.accent, theme.accentHover, hovered()) : off;
    if (!isEnabled())
        ground = mixed(theme.panel, ground, 0.5);
    fillRounded(painter, track, switchTrackHeight / 2, ground);
    const double margin = (switchTrackHeight - knob) / 2;
    const double left = isChecked() ? track.right() - margin - knob : margin;
    painter.setBrush(isEnabled() ? QColor(Qt::white) : mixed(theme.panel, Qt::white, 0.5));
    painter.drawEllipse(QRectF(left, track.top() + margin, knob, knob));
}
