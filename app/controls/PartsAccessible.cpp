#include "app/controls/PartsAccessible.h"

QWindow* PartAccessible::window() const
{
    return isValid() ? m_widget->window()->windowHandle() : nullptr;
}

QAccessibleInterface* PartAccessible::parent() const
{
    return m_widget ? QAccessible::queryAccessibleInterface(m_widget) : nullptr;
}

void* PartAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                : nullptr;
}

void PartAccessible::doAction(const QString& name)
{
    if (isValid() && name == pressAction())
        press();
}

PartsAccessible::~PartsAccessible()
{
    for (const QAccessible::Id id : m_children)
        QAccessible::deleteAccessibleInterface(id);
}

QAccessibleInterface* PartsAccessible::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    auto found = m_children.find(index);
    if (found == m_children.end()) {
        // registerAccessibleInterface() takes ownership of the part.
        found = m_children.insert(index, QAccessible::registerAccessibleInterface(newPart(index)));
    }
    return QAccessible::accessibleInterface(*found);
}

int PartsAccessible::indexOfChild(const QAccessibleInterface* wanted) const
{
    for (auto child = m_children.cbegin(); child != m_children.cend(); ++child) {
        if (QAccessible::accessibleInterface(child.value()) == wanted)
            return child.key();
    }
    return -1;
}

void tellPart(QWidget* widget, QAccessible::Event change, int index)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(widget, change);
    event.setChild(index);
    QAccessible::updateAccessibility(&event);
}
