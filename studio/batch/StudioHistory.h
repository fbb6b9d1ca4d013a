#pragma once

#include "studio/batch/Batch.h"
#include "studio/batch/Step.h"

#include <chrono>
#include <functional>
#include <optional>

// The editing state at one moment: a copy of the batch that shares its items, so it takes memory
// only for items that are edited afterwards.
using StudioHistorySnapshot = Batch;

// The snapshots that undo and redo return to. Joined changes (see Step::joined()) form one undo
// step as long as each follows the previous one after only a short pause. Callers pass the current
// time.
class StudioHistory {
public:
    using Time = std::chrono::steady_clock::time_point;

    bool canUndo() const { return !m_undoStack.isEmpty(); }
    bool canRedo() const { return !m_redoStack.isEmpty(); }

    // Records the change from `before` to `current`. Ignores a change without effect, and all
    // changes between beginCanvasEdit() and endCanvasEdit().
    void registerUndo(const StudioHistorySnapshot& before, const StudioHistorySnapshot& current,
                      const Step& step, Time now);
    // Whether a joined change at `now` would join the last step.
    bool isStepOpen(Time now) const;
    // The state before the step of this run, if a change at this moment would join it; else null.
    // Valid until the next change.
    const StudioHistorySnapshot* beforeRun(const Step& run) const;
    // Prevents the next change from joining the last step. The second one exempts a step of a run,
    // which all results of the run belong to.
    void endStep() { m_lastCoalescedUndoDate.reset(); }
    void endJoinedStep();

    // Return the state to restore, empty if there is none. `current` is saved for the opposite
    // command.
    std::optional<StudioHistorySnapshot> undo(const StudioHistorySnapshot& current);
    std::optional<StudioHistorySnapshot> redo(const StudioHistorySnapshot& current);

    // Begins a gesture on the canvas. Does nothing if one is already under way.
    void beginCanvasEdit(const StudioHistorySnapshot& current);
    bool isCanvasEditActive() const { return m_activeCanvasEditSnapshot.has_value(); }
    // Ends the gesture and returns the state before it; empty if no gesture was under way.
    std::optional<StudioHistorySnapshot> endCanvasEdit();

    // Applies to all saved states a change that undo must not revert, such as a payment.
    void amend(const std::function<void(StudioHistorySnapshot&)>& apply);

    void clear();

private:
    static std::optional<StudioHistorySnapshot> step(QList<StudioHistorySnapshot>& from,
                                                     QList<StudioHistorySnapshot>& to,
                                                     const StudioHistorySnapshot& current);

    QList<StudioHistorySnapshot> m_undoStack, m_redoStack;    // oldest first
    Step m_lastStep = Step::own();                            // of the last recorded change
    // When the last change that others may join was recorded; empty if the next one must not join.
    std::optional<Time> m_lastCoalescedUndoDate;
    std::optional<StudioHistorySnapshot> m_activeCanvasEditSnapshot;
};
