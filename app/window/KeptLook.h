#pragma once
#include <QObject>

class PreferencesStore;
class StudioShell;
enum class SideTab;

// How the user wants the window to look, kept among the preferences: the theme, which columns are
// seen and how wide they are, and where the window stands.
class KeptLook : public QObject {
    Q_OBJECT
public:
    // All outlive it.
    KeptLook(StudioShell* shell, PreferencesStore& preferences, QWidget* window);

    void restore();
    void keepGeometry();

    bool isLight() const;
    void setLight(bool light);
    bool isBatchColumnSeen() const;
    void setBatchColumnSeen(bool seen);
    bool isSidePanelSeen() const;
    void setSidePanelSeen(bool seen);
    // Of the side panel, which is seen then.
    void showTab(SideTab tab);

Q_SIGNALS:
    void changed();

private:
    StudioShell* m_shell;
    PreferencesStore& m_preferences;
    QWidget* m_window;
};
