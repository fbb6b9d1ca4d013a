#pragma once
#include "app/export/ExportButtons.h"
#include <QObject>
#include <QUuid>

class AccountSession;
class BatchBinding;
class ExportDialogs;
class PreferencesStore;
class StudioSession;

// Exports as the window offers them: the buttons with their costs, and where the files go.
class ExportBinding : public QObject {
    Q_OBJECT
public:
    // All outlive it; the choosers belong to the window.
    ExportBinding(StudioSession& session, AccountSession& account, const BatchBinding& column,
                  ExportButtons* buttons, PreferencesStore& preferences, QWidget* window);

    void show();    // the batch, an activity, the costs or the balance went on
    ExportOffer offer() const;
    void exportCurrent();
    void exportItem(QUuid item);
    void exportSeveral();

Q_SIGNALS:
    void leaveRequested();    // what had the focus cannot be pressed any more

private:
    bool refuses();

    StudioSession& m_session;
    AccountSession& m_account;
    const BatchBinding& m_batchBinding;
    ExportButtons* m_buttons;
    ExportDialogs* m_dialogs;
};
