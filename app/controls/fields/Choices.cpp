#include "app/controls/fields/Choices.h"

#include "app/controls/PartsAccessible.h"

#include <algorithm>

namespace {

// Null once the destructor of the class with the choices has run: a screen reader can still ask.
Choices* choicesOf(QObject* widget)
{
    return dynamic_cast<Choices*>(widget);
}

class ChoiceAccessible : public PartAccessible {
public:
    using PartAccessible::PartAccessible;

    bool isValid() const override { return choices() && m_index < choices()->choiceCount(); }
    QAccessible::Role role() const override
    {
        return isValid() ? choices()->choiceRole() : QAccessible::NoRole;
    }
    QString text(QAccessible::Text kind) const override
    {
        if (isValid() && kind == QAccessible::Name)
            return choices()->choiceName(m_index);
        return isValid() && kind == QAccessible::Description ? choices()->choiceToolTip(m_index)
                                                             : QString();
    }
    QRect rect() const override
    {
        if (!isValid())
            return {};
        const QRect box = choices()->choiceRect(m_index);
        return {m_widget->mapToGlobal(box.topLeft()), box.size()};
    }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        const bool isCurrent = m_index == choices()->current();
        if (role() == QAccessible::PageTab) {
            state.selectable = true;
            state.selected = isCurrent;
        } else {
            state.checkable = true;
            state.checked = isCurrent;
        }
        state.disabled = !m_widget->isEnabled() || !choices()->canBeChosen(m_index);
        state.focusable = !state.disabled;
        state.focused = isCurrent && m_widget->hasFocus();
        state.invisible = !m_widget->isVisible();
        return state;
    }

protected:
    void press() override
    {
        if (!state().disabled)
            choices()->choose(m_index);
    }

private:
    Choices* choices() const { return choicesOf(m_widget); }
};

class ChoicesAccessible : public PartsAccessible {
public:
    ChoicesAccessible(QWidget* widget, QAccessible::Role role) : PartsAccessible(widget, role) {}

    int childCount() const override
    {
        const Choices* choices = choicesOf(object());
        return choices ? choices->choiceCount() : 0;
    }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        const QPoint position = widget()->mapFromGlobal(QPoint(x, y));
        for (int i = 0; i < childCount(); ++i) {
            if (choicesOf(object())->choiceRect(i).contains(position))
                return child(i);
        }
        return nullptr;
    }
    QAccessibleInterface* focusChild() const override
    {
        const Choices* choices = choicesOf(object());
        return choices && widget()->hasFocus() ? child(choices->current()) : nullptr;
    }

protected:
    PartAccessible* newPart(int index) const override
    {
        return new ChoiceAccessible(widget(), index);
    }
};

QAccessibleInterface* accessibleChoicesOf(const QString&, QObject* object)
{
    const Choices* choices = choicesOf(object);
    if (!choices)
        return nullptr;
    const bool areTabs = choices->choiceRole() == QAccessible::PageTab;
    return new ChoicesAccessible(static_cast<QWidget*>(object),
                                 areTabs ? QAccessible::PageTabList : QAccessible::Grouping);
}

}    // namespace

Choices::Choices()
{
    QAccessible::installFactory(accessibleChoicesOf);
}

std::optional<int> choiceByKey(int key, int current, int count)
{
    if (count == 0)
        return std::nullopt;
    switch (key) {
    case Qt::Key_Left:
        return std::max(current - 1, 0);
    case Qt::Key_Right:
        return std::min(current + 1, count - 1);
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return count - 1;
    default:
        return std::nullopt;
    }
}
