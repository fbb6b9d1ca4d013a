#pragma once
#include "app/controls/KeyHint.h"
#include "studio/StatusLog.h"

#include <QElapsedTimer>
#include <QTimer>

#include <optional>

class Control;
class IconButton;
class ProgressBar;

// What happened last, and at the right how far the work is or which keys help.
class StatusLine : public QWidget {
    Q_OBJECT
public:
    explicit StatusLine(QWidget* parent = nullptr);
    // Whatever is told, the bar of what is under way stays.
    void setStatus(const StatusEntry& told, const std::optional<Activity>& underWay = {});
    void setKeyHints(const QList<KeyHint>& hints);
    // What was told, oldest first, above the line; it takes the keyboard until Esc or a press
    // elsewhere.
    void showHistory(const QList<StatusEntry>& history);
    // Likewise a list that the sentence only counts.
    void showDetails(const QStringList& details);
    QList<QWidget*> focusOrder() const;
    QSize sizeHint() const override { return {600, 28}; }

Q_SIGNALS:
    void stopRequested();
    void linkRequested();
    void historyRequested();
    void leaveRequested();    // what had the focus is gone

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QSize popoverRoom() const;
    void popUp(QWidget* popover) const;
    void announce();
    void showParts();
    void place();
    int sentenceEnd() const;
    QRect sentenceRect() const;

    StatusEntry m_told;
    std::optional<Activity> m_underWay;
    QTimer m_spin;
    double m_turn = 0;
    QTimer m_announceLater;
    QElapsedTimer m_announced;
    ProgressBar* m_bar;
    IconButton* m_stop;
    Control* m_link;
    KeyHints* m_hints;
};
