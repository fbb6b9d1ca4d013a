#include "app/window/StudioMenu.h"

#include <QAction>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

QList<QKeySequence> sequencesOf(QStringView keys)
{
    QList<QKeySequence> sequences;
    for (const QStringView key : keys.split(u' ', Qt::SkipEmptyParts))
        sequences.append(QKeySequence(key.toString(), QKeySequence::PortableText));
    return sequences;
}

QString entryOf(const MenuCommand& command)
{
    const QString text = command.wording ? command.wording() : command.text;
    return command.shownKey.isEmpty() ? text : text + u'\t' + command.shownKey.toString();
}

}    // namespace

StudioMenu::StudioMenu(const QList<MenuCommand>& commands, QWidget* window)
    : QObject(window), m_commands(commands), m_menu(new QMenu(window))
{
    for (qsizetype i = 0; i < m_commands.size(); ++i)
        add(i, window);
    connect(m_menu, &QMenu::aboutToShow, this, &StudioMenu::showState);
    // Enables all entries when the menu closes, because the key of a disabled entry does nothing: a
    // command run by its key tells the user itself what is missing.
    connect(m_menu, &QMenu::aboutToHide, this, &StudioMenu::enableAll);
}

QMenu* StudioMenu::menuAt(QStringView path)
{
    QMenu* parent = m_menu;
    QString known;
    for (const QStringView part : path.split(u'/')) {
        known += u'/' + part.toString();
        QMenu*& menu = m_submenus[known];
        if (!menu)
            menu = parent->addMenu(part.toString());
        parent = menu;
    }
    return parent;
}

void StudioMenu::add(qsizetype index, QWidget* window)
{
    const MenuCommand& command = m_commands[index];
    if (command.menu.isEmpty()) {    // the action keeps m_actions parallel to m_commands
        m_actions.append(new QAction(command.text, m_menu));
        return;
    }
    QMenu* menu = menuAt(command.menu);
    if (command.startsGroup)
        menu->addSeparator();
    auto* action = new QAction(entryOf(command), menu);
    if (command.icon != Icon::none)
        action->setIcon(menuIcon(command.icon));
    action->setCheckable(bool(command.isChecked));
    action->setShortcuts(sequencesOf(command.keys));
    action->setAutoRepeat(command.repeats);
    connect(action, &QAction::triggered, this, [this, index] {
        Q_EMIT chosen(m_commands[index]);
        showChecks();
    });
    menu->addAction(action);
    if (command.place)
        action->setShortcutContext(Qt::WidgetShortcut);
    // Makes the command's key work while the menu is closed.
    (command.place ? command.place : window)->addAction(action);
    m_actions.append(action);
}

const MenuCommand& StudioMenu::command(QStringView text) const
{
    const auto found = std::ranges::find(m_commands, text, &MenuCommand::text);
    Q_ASSERT(found != m_commands.end());
    return *found;
}

QAction* StudioMenu::action(QStringView text) const
{
    return m_actions[&command(text) - m_commands.data()];
}

QString StudioMenu::keyOf(QStringView text) const
{
    return action(text)->shortcut().toString(QKeySequence::NativeText);
}

void StudioMenu::showState()
{
    for (qsizetype i = 0; i < m_commands.size(); ++i) {
        const MenuCommand& command = m_commands[i];
        if (command.wording) {
            m_actions[i]->setText(entryOf(command));
            m_actions[i]->setVisible(!m_actions[i]->text().isEmpty());
        }
        m_actions[i]->setEnabled((!m_isLocked || command.isAlwaysUsable) &&
                                 (!command.isPossible || command.isPossible()));
    }
    for (QMenu* submenu : std::as_const(m_submenus)) {
        const QList<QAction*> entries = submenu->actions();
        submenu->setEnabled(std::ranges::any_of(entries, &QAction::isVisible));
    }
    showChecks();
}

void StudioMenu::showChecks()
{
    for (qsizetype i = 0; i < m_commands.size(); ++i) {
        if (m_commands[i].isChecked)
            m_actions[i]->setChecked(m_commands[i].isChecked());
    }
}

void StudioMenu::enableAll()
{
    for (qsizetype i = 0; i < m_commands.size(); ++i)
        m_actions[i]->setEnabled(!m_isLocked || m_commands[i].isAlwaysUsable);
}

void StudioMenu::setLocked(bool locked)
{
    m_isLocked = locked;
    enableAll();
}
