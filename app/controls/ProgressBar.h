#pragma once
#include "app/controls/Announcer.h"

#include <QVariantAnimation>
#include <QWidget>

#include <optional>

// A bar four pixels high. Without a value, an animation shows that work goes on, but not how much
// is done.
class ProgressBar : public QWidget {
    Q_OBJECT
public:
    explicit ProgressBar(QWidget* parent = nullptr);
    void setValue(std::optional<double> value);    // 0 to 1; empty: unknown
    std::optional<double> value() const { return m_value; }
    QSize sizeHint() const override { return {180, 4}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    QRectF filled() const;    // the part to paint as done, or what moves without a value

private:
    void animate();
    void tellValue();

    Announcer m_announcer{[this] { tellValue(); }, this};
    std::optional<double> m_value;
    double m_shown = 0;
    double m_phase = 0;    // how far the cycle of the animation without a value is, 0 to 1
    QVariantAnimation m_glide;
    QTimer m_cycle;
};
