#pragma once
#include "app/theme/SpinnerTurn.h"

// A turning ring that shows that work goes on. The timer behind it runs only while the ring is
// visible.
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
