#pragma once
#include "app/controls/Announcer.h"
#include "app/publish/PublishShown.h"

#include <QWidget>

class Caption;
class Paragraph;
class ProgressBar;
class PushButton;
class QVBoxLayout;
class Spinner;

// What was told about the publication: its state, its price, how far it is sent, the page of the
// published post, and the checks of the post.
class PublishStatusPanel : public QWidget {
    Q_OBJECT
public:
    explicit PublishStatusPanel(QWidget* parent = nullptr);
    void setReport(const PublishReport& report);
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void stopRequested();
    void pageRequested();
    void followRequested(const PublishCheck& check);    // its link was pressed
    void leaveRequested();                              // the focused button was hidden

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void showChecks(const CheckedPost& checks, bool isChecking);
    void announce();

    PublishReport m_report;
    bool m_isSet = false;
    Spinner* m_spinner;
    Paragraph* m_sentence;
    Paragraph* m_cost;
    Caption* m_amount;
    ProgressBar* m_bar;
    PushButton* m_stop;
    PushButton* m_page;
    QWidget* m_summary;
    Caption* m_warnings;
    QWidget* m_passedMark;
    Caption* m_passed;
    QWidget* m_rows;                     // of the checks
    QList<QWidget*> m_lines, m_links;    // one line for each check; those of their links
    Announcer m_announcer{[this] { announce(); }, this};
};
