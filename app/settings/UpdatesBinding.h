#pragma once
#include <QObject>

class AccountSession;
class UpdateController;
class UpdatesDetailPanel;

// Connects UpdateController with the panel of the settings. Owned by the panel.
class UpdatesBinding : public QObject {
    Q_OBJECT
public:
    // `updates` and `account` outlive the panel.
    UpdatesBinding(UpdateController& updates, AccountSession& account, UpdatesDetailPanel* panel);

private:
    void show();

    UpdateController& m_updates;
    UpdatesDetailPanel* m_panel;
};
