#pragma once
#include "app/theme/Icons.h"

#include <QHash>
#include <QObject>
#include <QString>

#include <functional>

class QAction;
class QMenu;
class QWidget;

// The groups of the list of keys; `none`: not listed.
enum class KeyTopic { none, images, output, layers, photo, edit, places, window };

// One command of the window: its place in the menu, its keys, what it does and when it is possible.
struct MenuCommand {
    // Path of the submenu, such as "Edición/Añadir forma". Empty: not in the menu, only in the list
    // of keys.
    QStringView menu;
    QString text;             // shown in the menu; identifies the command
    QStringView keys = {};    // separated by spaces; the menu shows the first
    // A key that the menu shows but does not register, because text fields use it. MainWindow
    // handles the key if the focused widget has not used it.
    QStringView shownKey = {};
    KeyTopic topic = KeyTopic::none;
    QStringView keyText = {};    // in the list of keys; empty: `text`
    bool leadsTopic = false;     // listed before the other keys of its topic
    Icon icon = Icon::none;
    bool startsGroup = false;
    std::function<void()> run = {};
    // Posted when the command is chosen, so that other parts of the program can ask for it too.
    // Whoever posts it has the command run.
    QString notification = {};
    // The menu calls these functions when it opens. A key runs the command without calling
    // isPossible().
    std::function<bool()> isPossible = {};    // empty: always
    std::function<bool()> isChecked = {};     // empty: no check mark
    // Gives the text to show; an entry without a text is hidden. Without the function, `text`.
    std::function<QString()> wording = {};
    QWidget* place = nullptr;       // where the keys work while it has the focus; null: everywhere
    bool changesImages = false;     // refused while the batch column shows an import
    bool keepsTyping = false;       // lets the user go on typing in a text field
    bool repeats = true;            // runs again while the key is held
    bool isAlwaysUsable = false;    // usable even while the menu is locked
};

// The main menu, with each command once. Keys also run commands while the menu is closed.
class StudioMenu : public QObject {
    Q_OBJECT
public:
    // Keys run commands while `window` is active.
    StudioMenu(const QList<MenuCommand>& commands, QWidget* window);

    QMenu* menu() const { return m_menu; }
    const QList<MenuCommand>& commands() const { return m_commands; }
    // `text`, here and below: of an existing command.
    QAction* action(QStringView text) const;
    const MenuCommand& command(QStringView text) const;
    QString keyOf(QStringView text) const;    // as shown in menus; empty if the command has no key
    // Locking disables all commands except those with isAlwaysUsable. Used while a sheet or the
    // sign-in gate covers the studio.
    void setLocked(bool locked);
    void showChecks();    // call when the result of an isChecked() may have changed

Q_SIGNALS:
    void chosen(const MenuCommand& command);

private:
    QMenu* menuAt(QStringView path);
    void add(qsizetype index, QWidget* window);
    void showState();
    void enableAll();

    const QList<MenuCommand> m_commands;
    QList<QAction*> m_actions;    // in the order of m_commands
    QMenu* m_menu;
    QHash<QString, QMenu*> m_submenus;    // by their path
    bool m_isLocked = false;
};
