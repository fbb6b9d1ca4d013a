#pragma once
#include "app/desktop/Appearance.h"
#include "app/forms/SettingsPanel.h"

class Paragraph;
class SegmentedControl;

class AppearanceDetailPanel : public SettingsPanel {
    Q_OBJECT
public:
    explicit AppearanceDetailPanel(QWidget* parent = nullptr);
    // Shows the choice; emits nothing. `isSchemeKnown`: as in Appearance.
    void setTheme(ThemeChoice choice, bool isSchemeKnown);

Q_SIGNALS:
    void themeChosen(ThemeChoice choice);    // by the user

private:
    SegmentedControl* m_themes;
    Paragraph* m_sentence;
};
