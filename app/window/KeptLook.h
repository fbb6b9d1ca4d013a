#pragma once
#include <QList>
#include <QObject>
#include <QRect>

class PreferencesStore;
class StudioShell;
enum class SideTab;

// Where `window` is to stand: where it is if the `screens` show all of it, else whole on the one
// that shows most of it, or on the first, with room for a `title` bar above; smaller if it must be.
QRect broughtOnto(const QList<QRect>& screens, const QRect& window, int title);

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
