#include "studio/batch/StudioHistory.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// A batch that has `number` as its objective, to tell it from other batches.
Batch state(int number)
{
    Batch batch;
    batch.objective = QString::number(number);
    return batch;
}

// A history, the batch whose changes it records, and its clock.
struct Studio {
    StudioHistory history;
    StudioHistory::Time now{};
    Batch current = state(0);

    void change(int to, const Step& step, std::chrono::milliseconds after = 0ms)
    {
        now += after;
        const Batch before = current;
        current = state(to);
        history.registerUndo(before, current, step, now);
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
        studio.change(i, Step::own());
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
    studio.change(1, Step::joined());
    for (int i = 2; i < 10; ++i)
        studio.change(i, Step::joined(), 790ms);    // long in total, but each gap is below 800 ms
    studio.change(10, Step::joined(), 800ms);       // exactly 800 ms later is too late to merge
    ASSERT_TRUE(studio.undo());
    EXPECT_EQ(studio.current, state(9));
    ASSERT_TRUE(studio.undo());
    EXPECT_EQ(studio.current, state(0));
    EXPECT_FALSE(studio.undo());

    studio = {};
    studio.change(1, Step::own());
    studio.change(2, Step::joined(), 100ms);    // not merged with a Step::own()
    studio.change(3, Step::own(), 100ms);
    ASSERT_TRUE(studio.undo());
    EXPECT_EQ(studio.current, state(2));
    ASSERT_TRUE(studio.undo());
    EXPECT_EQ(studio.current, state(1));
}

TEST(StudioHistory, aNewChangeEndsTheWayForward)
{
    Studio studio;
    studio.change(1, Step::joined());
    studio.change(2, Step::own());
    studio.undo();
    EXPECT_TRUE(studio.history.canRedo());
    studio.change(1, Step::own());    // the batch equals state(1) already
    EXPECT_TRUE(studio.history.canRedo());
    // The undo has ended the series of joined changes: the next one is a step of its own.
    studio.change(3, Step::joined(), 100ms);
    EXPECT_FALSE(studio.history.canRedo());
    studio.undo();
    EXPECT_EQ(studio.current, state(1));
}

TEST(StudioHistory, aGestureIsOneStepAndAnUndoInItEndsIt)
{
    Studio studio;
    studio.change(1, Step::own());
    studio.history.beginCanvasEdit(studio.current);
    studio.change(2, Step::joined());
    studio.history.beginCanvasEdit(studio.current);
    studio.change(3, Step::joined(), 2s);
    const auto before = studio.history.endCanvasEdit();
    ASSERT_EQ(before, state(1));
    studio.history.registerUndo(*before, studio.current, Step::own(), studio.now);
    EXPECT_EQ(studio.history.endCanvasEdit(), std::nullopt);
    studio.undo();
    EXPECT_EQ(studio.current, state(1));

    studio.history.beginCanvasEdit(studio.current);
    studio.undo();
    EXPECT_FALSE(studio.history.isCanvasEditActive());
    EXPECT_EQ(studio.current, state(0));
}

TEST(StudioHistory, aRunIsOneStepHoweverLongUntilSomethingElseChangesTheBatch)
{
    Studio studio;
    studio.change(1, Step::joined());
    const Step run = Step::run(), other = Step::run();
    studio.change(2, run, 100ms);    // not merged with the joined change just before
    studio.change(3, run, 5min);
    studio.change(4, other, 100ms);
    studio.change(5, Step::joined(), 100ms);
    studio.change(6, other, 100ms);
    studio.change(7, other, 5min);
    for (const int before : {5, 4, 3, 1, 0}) {
        ASSERT_TRUE(studio.undo());
        EXPECT_EQ(studio.current, state(before));
    }
    EXPECT_FALSE(studio.undo());
    studio.change(8, other, 100ms);    // a new step: the earlier ones of this run are undone
    ASSERT_TRUE(studio.undo());
    EXPECT_EQ(studio.current, state(0));
}
