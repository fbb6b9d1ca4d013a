#pragma once
#include "app/export/ExportButtons.h"
#include <QObject>
#include <QUuid>

class AccountSession;
class BatchBinding;
class ExportDialogs;
class PreferencesStore;
class StudioSession;

// Exports from the window: the export buttons with their costs, and the choice of the files' place.
class ExportBinding : public QObject {
    Q_OBJECT
public:
    // All arguments outlive this object. The file dialogs are children of `window`.
    ExportBinding(StudioSession& session, AccountSession& account, const BatchBinding& column,
                  ExportButtons* buttons, PreferencesStore& preferences, QWidget* window);

    void show();    // after a change of the batch, an activity, the costs or the balance
    ExportOffer offer() const;
    void exportCurrent();
    void exportItem(QUuid item);
    void exportSeveral();

Q_SIGNALS:
    void leaveRequested();    // the focused button was disabled

private:
    bool refuses();

    StudioSession& m_session;
    AccountSession& m_account;
    const BatchBinding& m_batchBinding;
    ExportButtons* m_buttons;
    ExportDialogs* m_dialogs;
};
