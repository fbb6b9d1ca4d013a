#pragma once
#include "app/forms/SettingsSheet.h"
#include "app/settings/AppSettingsDestination.h"

class AppearanceDetailPanel;
class LocalAIDetailPanel;
class UpdatesDetailPanel;

// "Ajustes de Moltiva": the settings of the program itself.
class AppSettingsWindow : public SettingsSheet {
    Q_OBJECT
public:
    explicit AppSettingsWindow(QWidget* window);
    void setDestination(AppSettingsDestination destination) { setPage(int(destination)); }
    UpdatesDetailPanel* updatesPanel() const { return m_updates; }
    LocalAIDetailPanel* localAIPanel() const { return m_localAI; }
    AppearanceDetailPanel* appearancePanel() const { return m_appearance; }

private:
    UpdatesDetailPanel* m_updates;
    LocalAIDetailPanel* m_localAI;
    AppearanceDetailPanel* m_appearance;
};
