#pragma once
#include "app/controls/Announcer.h"
#include "app/controls/KeyHint.h"
#include "app/theme/WindowClass.h"
#include "studio/StatusLog.h"

#include <QTimer>
#include <QWidget>

#include <array>
#include <optional>

class Badge;
class Control;
class IconButton;
class ProgressBar;

// Shows the current status sentence and, at the right, the progress of an activity or else the key
// hints.
class StatusLine : public QWidget {
    Q_OBJECT
public:
    explicit StatusLine(QWidget* parent = nullptr);
    // Shows the sentence of `told`. Also shows the progress bar of `underWay`, even if the sentence
    // is about something else.
    void setStatus(const StatusEntry& told, const std::optional<Activity>& underWay = {});
    // Shows beside the sentence that so many texts wait to be applied; `why` is the tooltip.
    void setWaiting(int texts, const QString& why);
    void setKeyHints(const QList<KeyHint>& hints);
    // Opens a popup above the line with the sentences of `history`, oldest first. The popup has the
    // keyboard focus until Esc or a click outside closes it.
    void showHistory(const QList<StatusEntry>& history);
    // Opens a popup with `details`, the names of the files that the sentence only counts.
    void showDetails(const QStringList& details);
    void setClass(WindowClass windowClass);
    QList<QWidget*> focusOrder() const;
    QSize sizeHint() const override { return {600, 28}; }

Q_SIGNALS:
    void stopRequested();
    void linkRequested();
    void actionRequested(StatusAction action);
    void historyRequested();
    void leaveRequested();    // the focused button was hidden: the focus should move

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QSize popoverRoom() const;
    void popUp(QWidget* popover) const;
    // A button beside the sentence; it opens the link of the sentence, unless it has an action.
    struct Offer {
        QString word;
        std::optional<StatusAction> action;
    };
    static QList<Offer> offersOf(const StatusLink& link);
    void showParts();
    void showOffers();
    void place();
    int sentenceEnd() const;
    int partsWidth() const;    // of what follows the sentence
    QRect sentenceRect() const;

    StatusEntry m_told;
    std::optional<Activity> m_underWay;
    QTimer m_spin;
    double m_turn = 0;
    Announcer m_announcer{[this] { setAccessibleName(m_told.sentence); }, this};
    ProgressBar* m_bar;
    IconButton* m_stop;
    Badge* m_waiting;
    QList<Offer> m_offers;
    std::array<Control*, 4> m_links{};    // of m_offers; the others are hidden
    KeyHints* m_hints;
};
