#pragma once
#include <QAccessibleActionInterface>
#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>

// A part that a widget paints itself, such as a tile or a tab, as a screen reader sees it: a child
// of the widget that can be pressed.
class PartAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    PartAccessible(QWidget* widget, int index) : m_widget(widget), m_index(index) {}

    QObject* object() const override { return nullptr; }
    QWindow* window() const override;
    QAccessibleInterface* parent() const override;
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    void setText(QAccessible::Text, const QString&) override {}
    void* interface_cast(QAccessible::InterfaceType type) override;
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override;
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

protected:
    virtual void press() = 0;

    QPointer<QWidget> m_widget;
    int m_index;
};

// A widget whose children are the parts that it paints.
class PartsAccessible : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;
    ~PartsAccessible() override;

    QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* wanted) const override;

protected:
    // The caller takes ownership.
    virtual PartAccessible* newPart(int index) const = 0;

private:
    mutable QHash<int, QAccessible::Id> m_children;    // by the index of the part
};

// Tells screen readers of a change of the part at `index`.
void tellPart(QWidget* widget, QAccessible::Event change, int index);
