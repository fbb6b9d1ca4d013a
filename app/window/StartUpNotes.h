#pragma once

#include <QElapsedTimer>
#include <QObject>

class MainWindow;

// Notes in the log how long the window takes until it is painted for the first time, until the
// studio is painted in it, and until nothing is being read or drawn any more.
class StartUpNotes : public QObject {
    Q_OBJECT
public:
    // `sinceStart` runs since the program started.
    StartUpNotes(MainWindow& window, const QElapsedTimer& sinceStart);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void notePainting();

    MainWindow& m_window;
    const QElapsedTimer m_sinceStart;
    bool m_isPainted = false, m_isStudioPainted = false, m_isQueued = false;
};
