#pragma once
#include "app/theme/Theme.h"

#include <QProxyStyle>

class QApplication;

enum class Motion { full, reduced };

// Paints the program's menus, tooltips, scroll bars and keyboard focus ring. All else looks as in
// Fusion.
class StudioStyle : public QProxyStyle {
    Q_OBJECT
public:
    explicit StudioStyle(Motion motion = Motion::full);

    using QProxyStyle::polish;
    void polish(QWidget* widget) override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override;
    // For SH_Widget_Animation_Duration, returns the duration of hover animations in ms; 0 with
    // reduced motion.
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override;
    void setMotion(Motion motion) { m_motion = motion; }

private:
    Motion m_motion;
};

// Sets the motion of the program's StudioStyle.
void setMotion(Motion motion);

// Sets the program's style to a StudioStyle, its font and its theme, and starts
// KeyboardFocus::watch().
void dress(QApplication& application, const Theme& theme, Motion motion = Motion::full);
