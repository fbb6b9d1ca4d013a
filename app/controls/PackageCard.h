#pragma once
#include "app/controls/Button.h"

enum class PackageSize { chip, card };

// An amount of credits to choose among others. A card shows its price and its use as well; a chip,
// the bare number.
class PackageCard : public Control {
    Q_OBJECT
public:
    struct Texts {
        QString amount, unit, price, use;
    };
    PackageCard(PackageSize size, const Texts& texts, QWidget* parent = nullptr);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    PackageSize m_size;
    Texts m_texts;
};

void paintRadio(QPainter& painter, const QRectF& box, const Theme& theme, bool checked,
                bool enabled);
