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
    QCoro::Task<> askUninstall();    // tells how many bytes that frees

    LocalAIManager& m_manager;
    LocalAIDetailPanel* m_panel;
};
