#pragma once
#include "app/export/ExportButtons.h"
#include <QObject>
#include <QTimer>
#include <QUuid>

#include <chrono>

class AccountSession;
class BatchBinding;
class ExportDialogs;
class PreferencesStore;
class StatusLine;
class StudioSession;
struct Status;

// Exports as the window shows them: the buttons with their costs, where the files go, and how far
// it is.
class ExportBinding : public QObject {
    Q_OBJECT
public:
    // All outlive it; the choosers belong to the window.
    ExportBinding(StudioSession& session, AccountSession& account, const BatchBinding& column,
                  ExportButtons* buttons, StatusLine* statusLine, PreferencesStore& preferences,
                  QWidget* window);

    void show();    // the batch, an import, an export, the costs or the balance went on
    ExportOffer offer() const;
    void exportCurrent();
    void exportItem(QUuid item);
    void exportSeveral();
    void stop();    // an export, else an import
    // What the session told, with where it leads.
    Status completed(Status told) const;
    // An export that goes on keeps its bar, whatever is told, and can still be stopped.
    Status withProgress(Status told) const;

    // The window has to wait with closing: an export is stopped first. It is asked to close again
    // when that is done, or has taken too long.
    bool delaysClosing();
    void setLongestWait(std::chrono::milliseconds wait) { m_closing.setInterval(wait); }

Q_SIGNALS:
    void closeRequested();
    void statusOutdated();
    void leaveRequested();    // what had the focus cannot be pressed any more

private:
    bool refuses();
    void exportChanged();
    void followLink();

    StudioSession& m_session;
    AccountSession& m_account;
    const BatchBinding& m_column;
    ExportButtons* m_buttons;
    StatusLine* m_statusLine;
    ExportDialogs* m_dialogs;
    QTimer m_closing;    // runs while the window waits
    bool m_hasWaited = false;
};
