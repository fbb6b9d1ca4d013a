#pragma once
#include "app/controls/KeyHint.h"

#include <QElapsedTimer>
#include <QTimer>

#include <optional>

class Control;
class IconButton;
class ProgressBar;

enum class StatusKind { info, ok, warning, error, busy };
struct Status {
    StatusKind kind = StatusKind::info;
    QString sentence = {};
    std::optional<double> progress = {};    // 0 to 1; only while something is going on
    bool stoppable = false;                 // may the user end what is going on?
    bool goesOn = false;                    // also where the kind is not busy
    QString link = {};                      // what the sentence leads to, as a button after it
    bool isUnderWay() const { return kind == StatusKind::busy || goesOn; }
    bool operator==(const Status&) const = default;
};

// What happened last, and at the right how far the work is or which keys help.
class StatusLine : public QWidget {
    Q_OBJECT
public:
    explicit StatusLine(QWidget* parent = nullptr);
    void setStatus(const Status& status);
    void setKeyHints(const QList<KeyHint>& hints);
    // The last ten, oldest first. The steps of one piece of work count as one.
    const QList<Status>& history() const { return m_history; }
    // Above the line, whole sentences; it takes the keyboard until Esc or a press elsewhere.
    void showHistory();
    // Likewise a list that the sentence only counts.
    void showDetails(const QStringList& details);
    QList<QWidget*> focusOrder() const;
    QSize sizeHint() const override { return {600, 28}; }

Q_SIGNALS:
    void stopRequested();
    void linkRequested();
    void leaveRequested();    // what had the focus is gone

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void remember(const Status& status);
    QSize popoverRoom() const;
    void popUp(QWidget* popover) const;
    void announce();
    void showParts();
    void place();
    int sentenceEnd() const;
    QRect sentenceRect() const;

    Status m_status;
    QList<Status> m_history;
    QTimer m_spin;
    double m_turn = 0;
    QTimer m_announceLater;
    QElapsedTimer m_announced;
    ProgressBar* m_bar;
    IconButton* m_stop;
    Control* m_link;
    KeyHints* m_hints;
};
