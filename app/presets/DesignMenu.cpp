#include "app/presets/DesignMenu.h"

#include "app/controls/Caption.h"
#include "app/theme/Icons.h"

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
    m_confirmed->setText(m_question);
    return false;
}

// A menu closes before it triggers an entry: the first press must not get so far.
void DesignMenu::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_confirmed && !m_isAsked && actionAt(event->position().toPoint()) == m_confirmed)
        ask();
    else
        QMenu::mouseReleaseEvent(event);
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
