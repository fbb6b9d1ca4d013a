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
    QColor ground = isChecked() ? mixed(theme.accent, theme.accentHover, hovered())
                                : mixed(theme.line2, theme.fill, hovered());
    if (!isEnabled())
        ground = mixed(theme.panel, ground, 0.5);
    fillRounded(painter, track, switchTrackHeight / 2, ground);
    const double margin = (switchTrackHeight - knob) / 2;
    const double left = isChecked() ? track.right() - margin - knob : margin;
    painter.setBrush(isEnabled() ? QColor(Qt::white) : mixed(theme.panel, Qt::white, 0.5));
    painter.drawEllipse(QRectF(left, track.top() + margin, knob, knob));
}
