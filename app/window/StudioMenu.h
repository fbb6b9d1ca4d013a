#pragma once
#include "app/theme/Icons.h"

#include <QHash>
#include <QObject>
#include <QString>

#include <functional>

class QAction;
class QMenu;
class QWidget;

// One command of the window: its place in the menu, its key, what it does and when it can.
struct MenuCommand {
    QStringView menu;         // the path of its submenu: "Edición/Añadir forma"
    QString text;             // shown, and the command's name
    QStringView keys = {};    // several are split by spaces; the first is shown
    // A key that the menu shows but does not register, since text fields use it. The window handles
    // the key when the focused widget did not.
    QStringView toldKey = {};
    Icon icon = Icon::none;
    bool startsGroup = false;
    std::function<void()> run = {};
    // The menu asks these when it opens; a key runs the command at any time.
    std::function<bool()> isPossible = {};    // empty: always
    std::function<bool()> isChecked = {};     // empty: no check mark
    std::function<QString()> wording = {};    // empty: `text`
    bool changesImages = false;               // refused while the column shows an import's images
    bool keepsTyping = false;                 // does not end an edit that is being typed
    bool repeats = true;                      // runs again while its key is held
    bool isAlwaysUsable = false;              // even while the menu is locked
};

// The program's menu with every command once. The commands' keys work while the menu is closed.
class StudioMenu : public QObject {
    Q_OBJECT
public:
    // The keys work in `window`.
    StudioMenu(const QList<MenuCommand>& commands, QWidget* window);

    QMenu* menu() const { return m_menu; }
    QAction* action(QStringView text) const;    // the command must exist
    QString keyOf(QStringView text) const;      // as menus show the key; may be empty
    // Disables entries and keys while a sheet or the sign-in gate covers the studio.
    void setLocked(bool locked);
    void showChecks();    // call when an answer of isChecked() may have changed

Q_SIGNALS:
    void chosen(const MenuCommand& command);

private:
    QMenu* menuAt(QStringView path);
    void add(qsizetype index, QWidget* window);
    void showState();
    void enableAll();

    const QList<MenuCommand> m_commands;
    QList<QAction*> m_actions;    // by index of m_commands
    QMenu* m_menu;
    QHash<QString, QMenu*> m_submenus;    // by their path
    bool m_isLocked = false;
};
