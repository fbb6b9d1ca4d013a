#include "app/batch/TileGridAccessible.h"

#include "app/batch/TileGrid.h"

#include <QAccessibleActionInterface>
#include <QAccessibleWidget>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace {

class TileAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    TileAccessible(TileGrid* grid, int index) : m_grid(grid), m_index(index) {}

    bool isValid() const override { return m_grid && m_index < m_grid->tiles().size(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override
    {
        return isValid() ? m_grid->window()->windowHandle() : nullptr;
    }
    QAccessibleInterface* parent() const override
    {
        return m_grid ? QAccessible::queryAccessibleInterface(m_grid) : nullptr;
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QString text(QAccessible::Text kind) const override
    {
        if (isValid() && kind == QAccessible::Name)
            return m_grid->accessibleText(m_index);
        if (!isValid() || kind != QAccessible::Description)
            return {};
        const Tile& tile = m_grid->tiles()[m_index];
        const QStringList answer(tile.answer);
        return (tile.answer.isEmpty() ? tile.warnings : answer + tile.warnings).join(u' ');
    }
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override
    {
        if (!isValid())
            return {};
        const QRect box = m_grid->tileRect(m_index);
        return {m_grid->viewport()->mapToGlobal(box.topLeft()), box.size()};
    }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        const Tile& tile = m_grid->tiles()[m_index];
        state.focusable = state.selectable = state.multiSelectable = true;
        state.selected = tile.selected;
        state.focused = tile.current && m_grid->hasFocus();
        state.offscreen = !m_grid->tileRect(m_index).intersects(m_grid->viewport()->rect());
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
            Q_EMIT m_grid->clicked(m_index, Qt::NoModifier);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    QPointer<TileGrid> m_grid;
    int m_index;
};

class GridAccessible : public QAccessibleWidget {
public:
    explicit GridAccessible(TileGrid* grid) : QAccessibleWidget(grid, QAccessible::List) {}
    ~GridAccessible() override
    {
        for (const QAccessible::Id id : m_children)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return int(grid()->tiles().size()); }
    QAccessibleInterface* child(int index) const override
    {
        if (index < 0 || index >= childCount())
            return nullptr;
        auto found = m_children.find(index);
        if (found == m_children.end()) {
            // registerAccessibleInterface() takes ownership of `tile`.
            auto* tile = new TileAccessible(grid(), index);
            found = m_children.insert(index, QAccessible::registerAccessibleInterface(tile));
        }
        return QAccessible::accessibleInterface(*found);
    }
    int indexOfChild(const QAccessibleInterface* wanted) const override
    {
        for (auto child = m_children.cbegin(); child != m_children.cend(); ++child) {
            if (QAccessible::accessibleInterface(child.value()) == wanted)
                return child.key();
        }
        return -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        return child(grid()->tileAt(grid()->viewport()->mapFromGlobal(QPoint(x, y))));
    }
    QAccessibleInterface* focusChild() const override
    {
        return grid()->hasFocus() ? child(grid()->currentIndex()) : nullptr;
    }

private:
    TileGrid* grid() const { return static_cast<TileGrid*>(object()); }

    mutable QHash<int, QAccessible::Id> m_children;    // by the tile's index
};

QAccessibleInterface* tileGridAccessible(const QString&, QObject* object)
{
    auto* grid = qobject_cast<TileGrid*>(object);
    return grid ? new GridAccessible(grid) : nullptr;
}

}    // namespace

void makeTileGridsAccessible()
{
    QAccessible::installFactory(tileGridAccessible);
}
