#pragma once
#include <QObject>
#include <QTimer>

#include <chrono>

class StatusLine;
class StudioSession;

// Shows the session's status sentences and activities in the status line. Stops activities, and
// delays the closing of the window until they have ended.
class StatusBinding : public QObject {
    Q_OBJECT
public:
    // `session` and `line` outlive this object.
    StatusBinding(StudioSession& session, StatusLine* line);

    void showHistory();
    bool canStop() const;
    QString stopText() const;    // of the command that stops the activity
    void stop();                 // stops the activity that the status line shows
    // Returns whether the window must not close yet. If so, stops the activity that prevents
    // closing, and emits closeRequested() when it has ended or after the longest wait.
    bool delaysClosing();
    // Whether the user has asked to close the window.
    bool isClosing() const { return m_isClosing; }
    void setLongestWait(std::chrono::milliseconds wait) { m_closing.setInterval(wait); }

Q_SIGNALS:
    void closeRequested();

private:
    void show();
    void showWaiting();
    void followActivity();
    void followLink();

    StudioSession& m_session;
    StatusLine* m_line;
    QTimer m_closing;    // runs while the window waits to close
    bool m_hasWaited = false, m_isClosing = false;
};
