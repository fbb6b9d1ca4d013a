#pragma once
#include "app/theme/SpinnerTurn.h"

// Says that something goes on, while it is shown.
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
