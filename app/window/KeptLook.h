#pragma once
#include <QObject>

class PreferencesStore;
class StudioShell;
enum class SideTab;

// Stores the look of the window in the preferences and restores it: which columns are visible and
// how wide, and the geometry of the window.
class KeptLook : public QObject {
    Q_OBJECT
public:
    // The arguments outlive this object.
    KeptLook(StudioShell* shell, PreferencesStore& preferences, QWidget* window);

    void restore();
    void keepGeometry();

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
