#pragma once
#include <QHash>
#include <QObject>

class QAction;
class QMenu;
class QWidget;

// What can be asked for with a menu entry or a key.
enum class Command {
    importImages,
    importFolder,
    exportCurrent,
    exportAll,
    stop,
    importTemplate,
    importTexts,
    exportTexts,
    restoreAside,
    account,
    appSettings,
    signOut,
    quit,
    undo,
    redo,
    editText,
    removeLayer,
    copyStyle,
    pasteStyle,
    addRectangle,
    addCircle,
    addTriangle,
    addLine,
    saveTemplate,
    selectAll,
    discard,
    previousImage,
    nextImage,
    storyReel,
    horizontal,
    carouselPortrait,
    square,
    textTab,
    shapesTab,
    templatesTab,
    fill,
    fit,
    zoomWhole,
    zoomIn,
    zoomOut,
    centrePhoto,
    safeZone,
    batchColumn,
    sidePanel,
    nextRegion,
    previousRegion,
    darkTheme,
    lightTheme,
    showHistory,
    checkForUpdates
};

// The menu of the program: every command once, with its key, which acts with the menu closed.
class StudioMenu : public QObject {
    Q_OBJECT
public:
    // The keys act in `window`.
    explicit StudioMenu(QWidget* window);

    QMenu* menu() const { return m_menu; }
    QAction* action(Command command) const { return m_actions.value(command); }
    void setEnabled(std::initializer_list<Command> commands, bool enabled);
    // Something lies over the studio: neither entries nor keys reach it.
    void setLocked(bool locked);

Q_SIGNALS:
    void chosen(Command command);
    void aboutToShow();

private:
    void enableAll();

    QMenu* m_menu;
    QHash<Command, QAction*> m_actions;
    bool m_isLocked = false;
};
