#pragma once
#include "app/theme/SpinnerTurn.h"

// Shows that work goes on. Turns while it is visible.
class Spinner : public QWidget {
    Q_OBJECT
public:
    explicit Spinner(int side, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    SpinnerTurn m_turn;
};
