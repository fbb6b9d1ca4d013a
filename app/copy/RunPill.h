#pragma once
#include "app/controls/ProgressBar.h"
#include "app/theme/SpinnerTurn.h"

// How far the run is: a bar as high as a button, with a spinner and a sentence on it.
class RunPill : public ProgressBar {
    Q_OBJECT
public:
    explicit RunPill(QWidget* parent);
    void setText(const QString& text);        // a screen reader hears it at a measured pace
    void setLastText(const QString& text);    // it hears this one at once

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    bool change(const QString& text);

    QString m_text;
    Announcer m_announcer{[this] { setAccessibleName(m_text); }, this};
    SpinnerTurn m_turn;
};
