#include "app/controls/AccessibleRole.h"

#include <QAccessibleWidget>
#include <QVariant>

namespace {

constexpr char roleProperty[] = "accessibleRole";

class RoleAccessible : public QAccessibleWidget {
public:
    explicit RoleAccessible(QWidget* widget) : QAccessibleWidget(widget) {}
    QAccessible::Role role() const override
    {
        return QAccessible::Role(widget()->property(roleProperty).toInt());
    }
};

QAccessibleInterface* accessibleInRole(const QString&, QObject* object)
{
    auto* widget = qobject_cast<QWidget*>(object);
    const bool hasRole = widget && widget->property(roleProperty).isValid();
    return hasRole ? new RoleAccessible(widget) : nullptr;
}

}    // namespace

void setAccessibleRole(QWidget* widget, QAccessible::Role role)
{
    QAccessible::installFactory(accessibleInRole);
    widget->setProperty(roleProperty, int(role));
}
