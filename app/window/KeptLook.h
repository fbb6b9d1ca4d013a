#pragma once
#include <QObject>

class PreferencesStore;
class StudioShell;
enum class SideTab;

// The look of the window as the user left it, stored in the preferences: the theme, which columns
// are visible and how wide, and the window's geometry.
class KeptLook : public QObject {
    Q_OBJECT
public:
    // The arguments outlive this object.
    KeptLook(StudioShell* shell, PreferencesStore& preferences, QWidget* window);

    void restore();
    void keepGeometry();

    bool isLight() const;
    void setLight(bool light);
    bool isBatchColumnSeen() const;
    void setBatchColumnSeen(bool seen);
    bool isSidePanelSeen() const;
    void setSidePanelSeen(bool seen);
    // Opens a tab of the side panel, and shows the panel if it is hidden.
    void showTab(SideTab tab);

Q_SIGNALS:
    void changed();

private:
    StudioShell* m_shell;
    PreferencesStore& m_preferences;
    QWidget* m_window;
};
