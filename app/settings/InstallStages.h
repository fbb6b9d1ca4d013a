#pragma once
#include "app/controls/Grounds.h"
#include "app/theme/SpinnerTurn.h"

#include <QStringList>

// The stages of an installation: those that are done, the current one and those to come.
class InstallStages : public CardGround {
    Q_OBJECT
public:
    explicit InstallStages(QWidget* parent = nullptr);
    // `current` is one of `stages`, or empty before the first. `amount` stands at its right.
    void setStages(const QStringList& stages, const QString& current, const QString& amount);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {200, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QStringList m_stages;
    qsizetype m_current = -1;
    QString m_amount;
    SpinnerTurn m_turn;
};
