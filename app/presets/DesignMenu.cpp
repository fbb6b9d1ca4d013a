#include "app/presets/DesignMenu.h"

#include "app/controls/Caption.h"
#include "app/theme/Icons.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidgetAction>

namespace {
constexpr int designMenuWidth = 312, menuHeadingHeight = 24, menuHeadingLeft = 8;
}

DesignMenu::DesignMenu(QWidget* parent) : QMenu(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setMinimumWidth(designMenuWidth);
    connect(this, &QMenu::hovered, this, [this](QAction* entry) {
        if (entry != m_confirmed && std::exchange(m_isAsked, false))
            m_confirmed->setText(m_unasked);
    });
}

QAction* DesignMenu::newEntry(Icon icon, const QString& text, const QString& beside)
{
    return addAction(menuIcon(icon), beside.isEmpty() ? text : text + u'\t' + beside);
}

void DesignMenu::addHeading(const QString& text)
{
    auto* line = new QWidget(this);
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(menuHeadingLeft, 0, menuHeadingLeft, 0);
    row->addWidget(new Caption(Type::caption, &Theme::text3, text, line));
    line->setFixedHeight(menuHeadingHeight);
    auto* heading = new QWidgetAction(this);
    heading->setDefaultWidget(line);
    heading->setEnabled(false);
    addAction(heading);
}

// Returns whether the entry may act: the user has been asked before.
bool DesignMenu::ask()
{
    if (std::exchange(m_isAsked, true))
        return true;
    m_unasked = m_confirmed->text();
    m_confirmed->setText(m_question);
    // Lets a screen reader read the question.
    QAccessibleEvent read(this, QAccessible::Focus);
    read.setChild(int(actions().indexOf(m_confirmed)));
    QAccessible::updateAccessibility(&read);
    return false;
}

// A menu closes before it triggers an entry: the first press must not get so far.
void DesignMenu::mouseReleaseEvent(QMouseEvent* event)
{
    if (std::exchange(m_isDoubleClick, false))
        return;
    if (m_confirmed && !m_isAsked && actionAt(event->position().toPoint()) == m_confirmed)
        ask();
    else
        QMenu::mouseReleaseEvent(event);
}

// A double click is one press: it does not confirm what it asks.
void DesignMenu::mouseDoubleClickEvent(QMouseEvent* event)
{
    m_isDoubleClick = m_confirmed && actionAt(event->position().toPoint()) == m_confirmed;
    QMenu::mouseDoubleClickEvent(event);
}

void DesignMenu::keyPressEvent(QKeyEvent* event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                         event->key() == Qt::Key_Space;
    if (isEnter && m_confirmed && activeAction() == m_confirmed) {
        if (event->isAutoRepeat())
            return;    // a key held too long does not confirm
        if (!m_isAsked) {
            ask();
            return;
        }
    }
    QMenu::keyPressEvent(event);
}
