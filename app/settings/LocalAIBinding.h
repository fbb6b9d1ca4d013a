#pragma once
#include <QCoroTask>
#include <QObject>

class LocalAIDetailPanel;
class LocalAIManager;
struct LocalAIShown;

// Connects the local engine's page of the settings with its manager.
class LocalAIBinding : public QObject {
    Q_OBJECT
public:
    // `manager` outlives the binding, which belongs to `panel`.
    LocalAIBinding(LocalAIManager& manager, LocalAIDetailPanel* panel);

private:
    LocalAIShown shown() const;
    void show();
    // Asks for a confirmation that tells how many bytes are freed, unless the panel has been left
    // or the engine is no longer installed when they are added up.
    QCoro::Task<> askUninstall();

    LocalAIManager& m_manager;
    LocalAIDetailPanel* m_panel;
    bool m_isAddingUp = false;    // the bytes, for askUninstall()
};
