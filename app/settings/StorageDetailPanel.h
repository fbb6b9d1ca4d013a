#pragma once
#include "app/forms/SettingsPanel.h"

class StorageDetailPanel : public SettingsPanel {
    Q_OBJECT
public:
    explicit StorageDetailPanel(QWidget* parent = nullptr);
};
