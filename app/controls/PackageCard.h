#pragma once
#include "app/controls/Button.h"

enum class PackageSize { chip, card };

// A button for one of several amounts of credits. PackageSize::card shows its price and its use
// too; PackageSize::chip shows only the amount.
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
