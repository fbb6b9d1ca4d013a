#include "canvas/interaction/CanvasInteractionAccessible.h"

#include "canvas/interaction/CanvasInteractionView.h"

#include <QAccessibleActionInterface>
#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

class LayerAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    LayerAccessible(CanvasInteractionView* view, QUuid layer) : m_view(view), m_layer(layer) {}

    bool isValid() const override { return m_view && m_view->layers().contains(m_layer); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override
    {
        return isValid() ? m_view->window()->windowHandle() : nullptr;
    }
    QAccessibleInterface* parent() const override
    {
        return m_view ? QAccessible::queryAccessibleInterface(m_view) : nullptr;
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::Graphic; }
    QString text(QAccessible::Text kind) const override
    {
        if (isValid() && kind == QAccessible::Name)
            return m_view->accessibleText(m_layer);
        return isValid() && kind == QAccessible::Description ? m_view->placeInWords(m_layer)
                                                             : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override { return isValid() ? m_view->screenRect(m_layer) : QRect(); }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        const CanvasInteraction& interaction = m_view->interaction();
        state.focusable = state.selectable = true;
        state.selected = interaction.selectedLayerID() == m_layer;
        state.focused = state.selected && m_view->hasFocus();
        state.invisible = !interaction.layerRect(m_layer);
        state.offscreen = !state.invisible && rect().isEmpty();
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override
    {
        if (isValid() && name == pressAction())
            m_view->selectLayer(m_layer);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    QPointer<CanvasInteractionView> m_view;
    QUuid m_layer;
};

class CanvasAccessible : public QAccessibleWidget {
public:
    explicit CanvasAccessible(CanvasInteractionView* view)
        : QAccessibleWidget(view, QAccessible::Canvas)
    {
    }
    ~CanvasAccessible() override
    {
        for (const QAccessible::Id id : m_children)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return int(view()->layers().size()); }
    QAccessibleInterface* child(int index) const override
    {
        const QList<QUuid> layers = view()->layers();
        if (index < 0 || index >= layers.size())
            return nullptr;
        forgetAllBut(layers);
        auto found = m_children.find(layers[index]);
        if (found == m_children.end()) {
            // registerAccessibleInterface() takes ownership of `layer`.
            auto* layer = new LayerAccessible(view(), layers[index]);
            found =
                m_children.insert(layers[index], QAccessible::registerAccessibleInterface(layer));
        }
        return QAccessible::accessibleInterface(*found);
    }
    int indexOfChild(const QAccessibleInterface* wanted) const override
    {
        for (auto child = m_children.cbegin(); child != m_children.cend(); ++child) {
            if (QAccessible::accessibleInterface(child.value()) == wanted)
                return int(view()->layers().indexOf(child.key()));
        }
        return -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        const QList<QUuid> layers = view()->layers();
        for (int i = 0; i < layers.size(); ++i) {
            if (view()->screenRect(layers[i]).contains(x, y))
                return child(i);
        }
        return nullptr;
    }
    QAccessibleInterface* focusChild() const override
    {
        const qsizetype selected =
            view()->layers().indexOf(view()->interaction().selectedLayerID());
        return view()->hasFocus() ? child(int(selected)) : nullptr;
    }

private:
    CanvasInteractionView* view() const { return static_cast<CanvasInteractionView*>(object()); }
    // Removes the children of layers that are no longer shown: each item of a batch has its own
    // layers.
    void forgetAllBut(const QList<QUuid>& layers) const
    {
        for (auto child = m_children.begin(); child != m_children.end();) {
            if (layers.contains(child.key())) {
                ++child;
            } else {
                QAccessible::deleteAccessibleInterface(child.value());
                child = m_children.erase(child);
            }
        }
    }

    mutable QHash<QUuid, QAccessible::Id> m_children;
};

QAccessibleInterface* canvasInteractionAccessible(const QString&, QObject* object)
{
    auto* view = qobject_cast<CanvasInteractionView*>(object);
    return view ? new CanvasAccessible(view) : nullptr;
}

}    // namespace

void makeCanvasesAccessible()
{
    QAccessible::installFactory(canvasInteractionAccessible);
}
