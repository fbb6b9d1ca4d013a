#pragma once
#include <QAccessible>
#include <QSet>
#include <QStringList>
#include <QWidget>

// Adds the controls below `node` that a screen reader cannot name, or cannot tell from those in
// `seen`. A choice is named within its group, and an item within its list.
inline void addUnclearControls(const QAccessibleInterface* node, QSet<QString>& seen,
                               QStringList& unclear)
{
    for (int i = 0; i < node->childCount(); ++i) {
        const QAccessibleInterface* child = node->child(i);
        if (!child || child->state().invisible)
            continue;
        addUnclearControls(child, seen, unclear);
        if (!child->state().focusable)
            continue;
        const QAccessible::Role role = child->role();
        const QString name = child->text(QAccessible::Name);
        const bool isOneOfMany = role == QAccessible::RadioButton || role == QAccessible::ListItem;
        QString told =
            QStringLiteral("%1 \"%2\"").arg(QLatin1String(qAccessibleRoleString(role)), name);
        if (isOneOfMany)
            told += QStringLiteral(" of \"%1\"").arg(node->text(QAccessible::Name));
        if (name.isEmpty() || role == QAccessible::Client || role == QAccessible::NoRole ||
            seen.contains(told))
            unclear.append(told);
        seen.insert(told);
    }
}

// Lists the controls of a screen that have no role, no name, or the role and the name of another.
inline std::string unclearControls(QWidget& screen)
{
    QSet<QString> seen;
    QStringList unclear;
    addUnclearControls(QAccessible::queryAccessibleInterface(&screen), seen, unclear);
    return unclear.join(u'\n').toStdString();
}
