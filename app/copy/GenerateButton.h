#pragma once
#include "app/controls/Button.h"
#include "app/controls/CostChip.h"

// What the button would write, and at what price.
struct GenerateOffer {
    qsizetype images = 0;             // selected
    qsizetype mostImages = 0;         // in the batch; keeps room for their number
    std::optional<Cost> cost = {};    // of all selected; nothing where texts cost nothing
    QString refusal = {};             // why it is disabled, its tooltip then; empty: it is not
    bool operator==(const GenerateOffer&) const = default;
};

// "Generar" with the number of images, if there are several, and their cost. Neither moves the
// word or changes the width.
class GenerateButton : public PushButton {
    Q_OBJECT
public:
    explicit GenerateButton(QWidget* parent);
    void setOffer(const GenerateOffer& offer);
    void setKey(const QString& key);    // shown in the tooltip
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int badgeWidth() const;    // 0 where no selection needs one
    void explain();

    GenerateOffer m_offer;
    QString m_key;
    CostChip* m_chip;
};
