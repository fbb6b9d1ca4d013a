#pragma once

#include "studio/batch/Batch.h"
#include "studio/batch/Step.h"

#include <chrono>
#include <functional>
#include <optional>

// The whole editing state at one moment. Shares its data with the batch, so that a snapshot costs
// only what changes afterwards.
using StudioHistorySnapshot = Batch;

// Undo and redo, as snapshots to go back to. Joined changes are one step as long as no pause
// between them is longer than a moment. Callers pass the time.
class StudioHistory {
public:
    using Time = std::chrono::steady_clock::time_point;

    bool canUndo() const { return !m_undoStack.isEmpty(); }
    bool canRedo() const { return !m_redoStack.isEmpty(); }

    // Records a change; `before` is the state from before it. Ignores a change without effect, and
    // all changes during a gesture.
    void registerUndo(const StudioHistorySnapshot& before, const StudioHistorySnapshot& current,
                      const Step& step, Time now);
    // Keeps the next change from joining the last step.
    void endStep() { m_lastCoalescedUndoDate.reset(); }

    // The state to return to; empty when there is none.
    std::optional<StudioHistorySnapshot> undo(const StudioHistorySnapshot& current);
    std::optional<StudioHistorySnapshot> redo(const StudioHistorySnapshot& current);

    // Keeps the start of the first gesture when called again before endCanvasEdit().
    void beginCanvasEdit(const StudioHistorySnapshot& current);
    bool isCanvasEditActive() const { return m_activeCanvasEditSnapshot.has_value(); }
    // Ends the gesture and returns the state from before it; empty when none was under way.
    std::optional<StudioHistorySnapshot> endCanvasEdit();

    // Changes every state of the history by something that is no edit: payments.
    void amend(const std::function<void(StudioHistorySnapshot&)>& apply);

    void clear();

private:
    static std::optional<StudioHistorySnapshot> step(QList<StudioHistorySnapshot>& from,
                                                     QList<StudioHistorySnapshot>& to,
                                                     const StudioHistorySnapshot& current);

    QList<StudioHistorySnapshot> m_undoStack, m_redoStack;    // oldest first
    Step m_lastStep = Step::own();                            // on top of the undo stack
    std::optional<Time> m_lastCoalescedUndoDate;    // time of the last change that others may join
    std::optional<StudioHistorySnapshot> m_activeCanvasEditSnapshot;
};
