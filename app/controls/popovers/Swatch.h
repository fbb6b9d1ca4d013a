#pragma once
#include "app/controls/Button.h"
#include "app/controls/popovers/ColorPopover.h"

// A button that shows a colour; it opens a popover to choose another.
class Swatch : public Control {
    Q_OBJECT
public:
    explicit Swatch(const QString& name, QWidget* parent = nullptr);
    void setColor(const QColor& color);    // emits nothing
    void setOffers(const ColorOffers& offers);
    void closePopover();
    QSize sizeHint() const override { return {32, 32}; }

Q_SIGNALS:
    void colorChanged(const QColor& color, Pace pace);
    void colorUsed(const QColor& color);    // the last chosen colour, when the popover closes

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void toggle();

    QColor m_color = Qt::black;
    ColorOffers m_offers;
    QPointer<ColorPopover> m_popover;
};

// Paints a colour in a small square, with an outline that makes it stand out from any background.
void paintColor(QPainter& painter, const QRectF& box, const QColor& color, const Theme& theme,
                bool enabled = true);
