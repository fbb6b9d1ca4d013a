#include "app/batch/TileGridAccessible.h"

#include "app/batch/TileGrid.h"
#include "app/controls/PartsAccessible.h"

using namespace Qt::StringLiterals;

namespace {

class TileAccessible : public PartAccessible {
public:
    using PartAccessible::PartAccessible;

    bool isValid() const override { return m_widget && m_index < grid()->tiles().size(); }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QString text(QAccessible::Text kind) const override
    {
        if (isValid() && kind == QAccessible::Name)
            return grid()->accessibleText(m_index);
        if (!isValid() || kind != QAccessible::Description)
            return {};
        const Tile& tile = grid()->tiles()[m_index];
        const QStringList answer(tile.answer);
        return (tile.answer.isEmpty() ? tile.warnings : answer + tile.warnings).join(u' ');
    }
    QRect rect() const override
    {
        if (!isValid())
            return {};
        const QRect box = grid()->tileRect(m_index);
        return {grid()->viewport()->mapToGlobal(box.topLeft()), box.size()};
    }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        const Tile& tile = grid()->tiles()[m_index];
        state.focusable = state.selectable = state.multiSelectable = true;
        state.selected = tile.selected;
        state.focused = tile.current && grid()->hasFocus();
        state.offscreen = !grid()->tileRect(m_index).intersects(grid()->viewport()->rect());
        return state;
    }

protected:
    void press() override { Q_EMIT grid()->clicked(m_index, Qt::NoModifier); }

private:
    TileGrid* grid() const { return static_cast<TileGrid*>(m_widget.data()); }
};

class GridAccessible : public PartsAccessible {
public:
    explicit GridAccessible(TileGrid* grid) : PartsAccessible(grid, QAccessible::List) {}

    int childCount() const override { return int(grid()->tiles().size()); }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        return child(grid()->tileAt(grid()->viewport()->mapFromGlobal(QPoint(x, y))));
    }
    QAccessibleInterface* focusChild() const override
    {
        return grid()->hasFocus() ? child(grid()->currentIndex()) : nullptr;
    }

protected:
    PartAccessible* newPart(int index) const override { return new TileAccessible(grid(), index); }

private:
    TileGrid* grid() const { return static_cast<TileGrid*>(object()); }
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
