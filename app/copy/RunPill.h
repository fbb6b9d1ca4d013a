#pragma once
#include "app/controls/ProgressBar.h"
#include "app/theme/SpinnerTurn.h"

// How far the run is: a bar as high as a button, with a spinner and a sentence on it.
class RunPill : public ProgressBar {
    Q_OBJECT
public:
    explicit RunPill(QWidget* parent);
    void setText(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QString m_text;
    SpinnerTurn m_turn;
};
