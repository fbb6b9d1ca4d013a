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
    QString text;             // names it as well
    QStringView keys = {};    // several are split by spaces; the first is shown
    // Of keys that text fields have a use for: told, not registered. The window hears of them only
    // when whatever has the focus did not take them.
    QStringView toldKey = {};
    Icon icon = Icon::none;
    bool startsGroup = false;
    std::function<void()> run = {};
    // The menu asks these when it opens; a key runs the command at any time.
    std::function<bool()> isPossible = {};    // else always
    std::function<bool()> isChecked = {};     // else it has no check mark
    std::function<QString()> wording = {};    // else `text`
    bool changesImages = false;               // of the batch: refused while others are coming
    bool keepsTyping = false;                 // leaves what is being typed as it is
    bool repeats = true;                      // while its key is held
    bool isAlwaysUsable = false;              // whatever lies over the studio
};

// The menu of the program: every command once, with its key, which acts with the menu closed.
class StudioMenu : public QObject {
    Q_OBJECT
public:
    // The keys act in `window`.
    StudioMenu(const QList<MenuCommand>& commands, QWidget* window);

    QMenu* menu() const { return m_menu; }
    QAction* action(QStringView text) const;    // of a command that is there
    QString keyOf(QStringView text) const;      // as it is shown; may be empty
    // Something lies over the studio: neither entries nor keys reach it.
    void setLocked(bool locked);
    void showChecks();    // what they show has changed

Q_SIGNALS:
    void chosen(const MenuCommand& command);

private:
    QMenu* menuAt(QStringView path);
    void add(qsizetype index, QWidget* window);
    void showState();
    void enableAll();

    const QList<MenuCommand> m_commands;
    QList<QAction*> m_actions;    // one a command
    QMenu* m_menu;
    QHash<QString, QMenu*> m_submenus;    // by their path
    bool m_isLocked = false;
};
