#pragma once
#include "app/export/ExportButtons.h"
#include <QObject>
#include <QUuid>

class AccountSession;
class BatchBinding;
class ExportDialogs;
class PreferencesStore;
class StudioSession;

// Handles the export buttons of the window: shows the costs, asks for the file or folder and starts
// the export.
class ExportBinding : public QObject {
    Q_OBJECT
public:
    // All arguments outlive this object. The file dialogs are children of `window`.
    ExportBinding(StudioSession& session, AccountSession& account, const BatchBinding& column,
                  ExportButtons* buttons, PreferencesStore& preferences, QWidget* window);

    void show();    // call after a change of the batch; updates the buttons
    ExportOffer offer() const;
    void exportCurrent();
    void exportItem(QUuid item);
    void exportSeveral();

Q_SIGNALS:
    void leaveRequested();    // the focused button was disabled: the focus should move

private:
    bool refuses();

    StudioSession& m_session;
    AccountSession& m_account;
    const BatchBinding& m_batchBinding;
    ExportButtons* m_buttons;
    ExportDialogs* m_dialogs;
};
