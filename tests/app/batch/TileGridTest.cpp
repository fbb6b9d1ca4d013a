#include "app/batch/TileGrid.h"
#include "app/batch/TileGridAccessible.h"
#include "tests/app/Events.h"

#include <QAccessible>
#include <QScrollBar>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QList<Tile> tilesOf(int count, int current = 0)
{
    QList<Tile> tiles;
    for (int i = 0; i < count; ++i)
        tiles.append({QUuid::createUuid(), u"foto-%1"_qs.arg(i + 1), i == current, i == current});
    return tiles;
}

QImage gray(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::gray);
    return image;
}

struct Grid : TileGrid {
    Grid()
    {
        resize(207, 600);
        connect(this, &TileGrid::picturesWanted, [this](const QList<QUuid>& ids, QSize pixels) {
            wanted = ids;
            size = pixels;
            ++wishes;
        });
        connect(this, &TileGrid::clicked, [this](int index, Qt::KeyboardModifiers modifiers) {
            clicks.append({index, modifiers});
        });
        show();
        settle();
    }
    void deliver()
    {
        for (const QUuid& id : QList<QUuid>(wanted))
            setPicture(id, gray(size));
    }
    QList<QUuid> visibleIds() const
    {
        QList<QUuid> ids;
        for (const int index : visibleTiles())
            ids.append(tiles()[index].id);
        return ids;
    }
    QList<QUuid> wanted;
    QSize size;
    int wishes = 0;
    QList<std::pair<int, Qt::KeyboardModifiers>> clicks;
};

// Collects the regions that the watched widget was asked to paint.
struct PaintWatch : QObject {
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            painted += static_cast<QPaintEvent*>(event)->region();
        return false;
    }
    QRegion painted;
};

}    // namespace

TEST(TileGrid, clickTellsTheTileAndTheModifiers)
{
    Grid grid;
    grid.setTiles(tilesOf(24));
    ASSERT_EQ(grid.columns(), 2);
    press(*grid.viewport(), grid.tileRect(3).center(), Qt::ControlModifier);
    press(*grid.viewport(), grid.tileRect(2).bottomLeft() + QPoint(4, 12), Qt::ShiftModifier);
    press(*grid.viewport(), QPoint(2, 2));
    const QList<std::pair<int, Qt::KeyboardModifiers>> expected{{3, Qt::ControlModifier},
                                                                {2, Qt::ShiftModifier}};
    EXPECT_EQ(grid.clicks, expected);
    EXPECT_FALSE(grid.focusPolicy() & Qt::ClickFocus);
}

TEST(TileGrid, wantsExactlyTheVisiblePictures)
{
    Grid grid;
    grid.setTiles(tilesOf(500));
    settle();
    EXPECT_EQ(grid.wanted, grid.visibleIds());
    EXPECT_LT(grid.wanted.size(), 14);
    EXPECT_TRUE(grid.viewport()->rect().intersects(grid.tileRect(int(grid.wanted.size()) - 1)));
    EXPECT_FALSE(grid.viewport()->rect().intersects(grid.tileRect(int(grid.wanted.size()))));

    grid.deliver();
    grid.verticalScrollBar()->setValue(20000);
    settle();
    EXPECT_EQ(grid.wanted, grid.visibleIds());
    EXPECT_GT(grid.visibleTiles().first(), 100);
}

TEST(TileGrid, anOutdatedPictureIsWantedAgainAndTheOthersAreNot)
{
    Grid grid;
    const QList<Tile> tiles = tilesOf(24);
    grid.setTiles(tiles);
    settle();
    grid.deliver();
    for (int round = 0; round < 2; ++round) {
        grid.wanted.clear();
        grid.pictureOutdated(tiles[1].id);
        settle();
        EXPECT_EQ(grid.wanted, QList<QUuid>{tiles[1].id}) << "round " << round;
    }
}

TEST(TileGrid, anotherRatioWantsAllVisibleInTheNewSize)
{
    Grid grid;
    grid.setTiles(tilesOf(24));
    settle();
    grid.deliver();
    const QSize before = grid.size;
    grid.setRatio(16.0 / 9);
    settle();
    EXPECT_EQ(grid.wanted, grid.visibleIds());
    EXPECT_EQ(grid.size.width(), before.width());
    EXPECT_LT(grid.size.height(), before.height());
}

TEST(TileGrid, keepsNoPicturesFarFromTheView)
{
    Grid grid;
    grid.setTiles(tilesOf(500));
    settle();
    for (int at = 0; at <= grid.verticalScrollBar()->maximum(); at += 500) {
        grid.verticalScrollBar()->setValue(at);
        settle();
        grid.deliver();
        ASSERT_LE(grid.keptPictures(), 80);
    }
    EXPECT_GE(grid.keptPictures(), grid.visibleTiles().size());
}

TEST(TileGrid, scrollsToTheCurrentTileOnlyWhenItIsAnother)
{
    Grid grid;
    QList<Tile> tiles = tilesOf(500);
    grid.setTiles(tiles);
    std::swap(tiles[0].current, tiles[321].current);
    grid.setTiles(tiles);
    EXPECT_TRUE(grid.viewport()->rect().contains(grid.tileRect(321)));

    grid.verticalScrollBar()->setValue(0);
    tiles[7].selected = true;
    grid.setTiles(tiles);
    EXPECT_EQ(grid.verticalScrollBar()->value(), 0) << "the user had scrolled away";
}

TEST(TileGrid, repaintsOnlyTheTileThatChanged)
{
    Grid grid;
    QList<Tile> tiles = tilesOf(500);
    grid.setTiles(tiles);
    settle();
    PaintWatch watch;
    grid.viewport()->installEventFilter(&watch);
    tiles[2].paid = true;
    tiles[400].name = u"lejos"_qs;
    grid.setTiles(tiles);
    settle();
    EXPECT_TRUE(watch.painted.contains(grid.tileRect(2).center()));
    EXPECT_FALSE(watch.painted.contains(grid.tileRect(0).center()));
    EXPECT_FALSE(watch.painted.contains(grid.tileRect(5).center()));
}

TEST(TileGrid, aWarningTakesNothingFromTheName)
{
    Grid grid;
    QList<Tile> tiles = tilesOf(2);
    tiles[1].name = u"un-nombre-bastante-largo"_qs;
    tiles[1].paid = true;
    const auto shown = [&] {
        grid.setTiles(tiles);
        return grid.viewport()->grab().toImage();
    };
    const QRect picture = grid.tileRect(1);
    const QRect caption(picture.bottomLeft() + QPoint(0, 1), QSize(picture.width(), 24));
    const QImage before = shown();
    tiles[1].warnings = {u"No cabe."_qs};
    const QImage after = shown();
    EXPECT_EQ(after.copy(caption), before.copy(caption));
    EXPECT_NE(after.copy(picture), before.copy(picture));
}

TEST(TileGrid, arrowsMoveByTileAndByRow)
{
    Grid grid;
    grid.setTiles(tilesOf(7, 4));
    for (const int key : {Qt::Key_Left, Qt::Key_Up, Qt::Key_Down, Qt::Key_End})
        type(grid, key, key == Qt::Key_End ? Qt::ShiftModifier : Qt::NoModifier);
    QList<int> targets;
    for (const auto& [index, modifiers] : grid.clicks)
        targets.append(index);
    EXPECT_EQ(targets, (QList<int>{3, 2, 6, 6}));
    EXPECT_EQ(grid.clicks.last().second, Qt::ShiftModifier);
}

TEST(TileGrid, isReadAsAListOfNamedTiles)
{
    makeTileGridsAccessible();
    Grid grid;
    QList<Tile> tiles = tilesOf(24, 2);
    tiles[2].name = u"arroyo-hayedo"_qs;
    tiles[2].paid = true;
    grid.setTiles(tiles);
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&grid);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->role(), QAccessible::List);
    ASSERT_EQ(list->childCount(), 24);
    QAccessibleInterface* third = list->child(2);
    EXPECT_EQ(third->text(QAccessible::Name),
              u"Imagen 3 de 24, arroyo-hayedo, actual, seleccionada, pagada"_qs);
    EXPECT_TRUE(third->state().selected);
    EXPECT_EQ(list->indexOfChild(third), 2);
    EXPECT_EQ(third->parent(), list);

    grid.setTiles(tiles.first(2));
    EXPECT_FALSE(third->isValid()) << "a reader may still hold it";
    EXPECT_TRUE(third->text(QAccessible::Name).isEmpty());
    EXPECT_EQ(list->child(2), nullptr);
}
