#pragma once
#include <QObject>
#include <QTimer>

#include <chrono>

class StatusLine;
class StudioSession;

// What was told and what is under way, as the status line shows them; stopping it, and closing the
// window around it.
class StatusBinding : public QObject {
    Q_OBJECT
public:
    // Both outlive it.
    StatusBinding(StudioSession& session, StatusLine* line);

    void showHistory();
    bool canStop() const;
    void stop();    // the foremost activity
    // The window has to wait with closing: what is under way is stopped first. It is asked to close
    // again when that is done, or has taken too long.
    bool delaysClosing();
    void setLongestWait(std::chrono::milliseconds wait) { m_closing.setInterval(wait); }

Q_SIGNALS:
    void closeRequested();

private:
    void show();
    void followActivity();
    void followLink();

    StudioSession& m_session;
    StatusLine* m_line;
    QTimer m_closing;    // runs while the window waits
    bool m_hasWaited = false;
};
