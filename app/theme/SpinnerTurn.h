#pragma once
#include <QTimer>
#include <QWidget>

#include <cmath>

// How far a spinner has turned, from 0 to 1 for a whole turn. Repaints the widget while it runs.
class SpinnerTurn {
public:
    explicit SpinnerTurn(QWidget* widget)
    {
        m_timer.setInterval(frameTime);
        m_timer.callOnTimeout(widget, [this, widget] {
            m_value = std::fmod(m_value + double(frameTime) / turnTime, 1.0);
            widget->update();
        });
    }
    void run(bool running)
    {
        if (running)
            m_timer.start();
        else
            m_timer.stop();
    }
    bool isRunning() const { return m_timer.isActive(); }
    double value() const { return m_value; }

private:
    static constexpr int turnTime = 1000, frameTime = 33;    // ms
    QTimer m_timer;
    double m_value = 0;
};
