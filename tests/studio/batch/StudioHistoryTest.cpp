#include "studio/batch/StudioHistory.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Changes = StudioHistory::Changes;

namespace {

// A state with `number` as its objective, to tell it from others.
Batch state(int number)
{
    Batch batch;
    batch.objective = QString::number(number);
    return batch;
}

// A history, and the state that its owner is in.
struct Studio {
    StudioHistory history;
    StudioHistory::Time now{};
    Batch current = state(0);

    void change(int to, Changes changes, std::chrono::milliseconds after = 0ms)
    {
        now += after;
        const Batch before = current;
        current = state(to);
        history.registerUndo(before, current, changes, now);
    }
    bool undo()
    {
        const auto target = history.undo(current);
        current = target.value_or(current);
        return target.has_value();
    }
    bool redo()
    {
        const auto target = history.redo(current);
        current = target.value_or(current);
        return target.has_value();
    }
};

}    // namespace

TEST(StudioHistory, keepsTheLastTwentySteps)
{
    Studio studio;
    for (int i = 1; i <= 25; ++i)
        studio.change(i, Changes::single);
    int steps = 0;
    while (studio.undo())
        ++steps;
    EXPECT_EQ(steps, 20);
    EXPECT_EQ(studio.current, state(5));
    while (studio.redo())
        --steps;
    EXPECT_EQ(steps, 0);
    EXPECT_EQ(studio.current, state(25));
}

TEST(StudioHistory, mergesContinuousChangesByTheGapBetweenThem)
{
    Studio studio;
    studio.change(1, Changes::continuous);
    for (int i = 2; i < 10; ++i)
        studio.change(i, Changes::continuous, 790ms);    // long in all, without a pause
    studio.change(10, Changes::continuous, 800ms);    // exactly 800 ms later is too late to merge
    ASSERT_TRUE(studio.undo());
    EXPECT_EQ(studio.current, state(9));
    ASSERT_TRUE(studio.undo());
    EXPECT_EQ(studio.current, state(0));
    EXPECT_FALSE(studio.undo());

    studio = {};
    studio.change(1, Changes::single);
    studio.change(2, Changes::continuous, 100ms);    // is not merged with a single change
    studio.change(3, Changes::single, 100ms);
    ASSERT_TRUE(studio.undo());
    EXPECT_EQ(studio.current, state(2));
    ASSERT_TRUE(studio.undo());
    EXPECT_EQ(studio.current, state(1));
}

TEST(StudioHistory, aNewChangeEndsTheWayForward)
{
    Studio studio;
    studio.change(1, Changes::continuous);
    studio.change(2, Changes::single);
    studio.undo();
    EXPECT_TRUE(studio.history.canRedo());
    studio.change(1, Changes::single);    // changes nothing
    EXPECT_TRUE(studio.history.canRedo());
    // The undo ended the continuous changes: one that follows at once is a step of its own.
    studio.change(3, Changes::continuous, 100ms);
    EXPECT_FALSE(studio.history.canRedo());
    studio.undo();
    EXPECT_EQ(studio.current, state(1));
}

TEST(StudioHistory, aGestureIsOneStepAndAnUndoInItEndsIt)
{
    Studio studio;
    studio.change(1, Changes::single);
    studio.history.beginCanvasEdit(studio.current);
    studio.change(2, Changes::continuous);
    studio.history.beginCanvasEdit(studio.current);
    studio.change(3, Changes::continuous, 2s);
    const auto before = studio.history.endCanvasEdit();
    ASSERT_EQ(before, state(1));
    studio.history.registerUndo(*before, studio.current, Changes::single, studio.now);
    EXPECT_EQ(studio.history.endCanvasEdit(), std::nullopt);
    studio.undo();
    EXPECT_EQ(studio.current, state(1));

    studio.history.beginCanvasEdit(studio.current);
    studio.undo();
    EXPECT_FALSE(studio.history.isCanvasEditActive());
    EXPECT_EQ(studio.current, state(0));
}
