#pragma once
#include "app/forms/SettingsPanel.h"

class PushButton;

class LocalAIDetailPanel : public SettingsPanel {
    Q_OBJECT
public:
    explicit LocalAIDetailPanel(QWidget* parent = nullptr);

Q_SIGNALS:
    void textPanelRequested();

private:
    PushButton* m_open;
};
