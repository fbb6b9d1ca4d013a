#pragma once
#include <QObject>

class AccountSession;
class ComposeBar;
class EngineRow;
class LocalAIManager;
class LocalAIService;
class StudioSession;
struct ComposeState;
struct EngineShown;

// Connects the generation of copy, and the engine that runs on this machine, with the compose bar
// and the engine's row.
class CopyBinding : public QObject {
    Q_OBJECT
public:
    // The arguments outlive the binding.
    CopyBinding(StudioSession& session, AccountSession& account, ComposeBar* bar, EngineRow* row);
    // Both outlive the binding. Without them nothing writes copy on this machine.
    void setLocalEngine(LocalAIManager& manager, const LocalAIService& service);
    void show();

Q_SIGNALS:
    void settingsRequested();    // those of the local engine

private:
    void connectBar();
    void connectRow();
    ComposeState composeState() const;
    EngineShown cloudShown() const;
    EngineShown engineShown() const;
    void followManager();

    StudioSession& m_session;
    AccountSession& m_account;
    ComposeBar* m_bar;
    EngineRow* m_row;
    LocalAIManager* m_manager = nullptr;
    const LocalAIService* m_service = nullptr;
    bool m_wasBusy = false;    // an installation or its removal was under way
};
