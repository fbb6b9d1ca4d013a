#pragma once
#include <QElapsedTimer>
#include <QTimer>

#include <functional>

// Tells screen readers of steps at most once in three seconds, because fast work would make them
// talk without end. What ends the work is told at once.
class Announcer : public QObject {
public:
    // `tell` tells the present state.
    Announcer(std::function<void()> tell, QObject* parent);
    void tellStep();
    void tellNow();

private:
    std::function<void()> m_tell;
    QTimer m_later;
    QElapsedTimer m_told;
};
