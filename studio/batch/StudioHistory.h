#pragma once

#include "studio/batch/Batch.h"
#include "studio/batch/Step.h"

#include <chrono>
#include <functional>
#include <optional>

// The whole editing state at one moment. Its containers are shared with the batch it was taken
// from, so a step costs what changed since.
using StudioHistorySnapshot = Batch;

// Undo and redo as states to go back to. Joined changes become one step as long as no two of them
// lie further apart than a moment. The time is passed in.
class StudioHistory {
public:
    using Time = std::chrono::steady_clock::time_point;

    bool canUndo() const { return !m_undoStack.isEmpty(); }
    bool canRedo() const { return !m_redoStack.isEmpty(); }

    // A change was made: `before` is the state it began with. Nothing is recorded of one that
    // changed nothing or belongs to a gesture under way.
    void registerUndo(const StudioHistorySnapshot& before, const StudioHistorySnapshot& current,
                      const Step& step, Time now);
    // The next change begins another step, whatever it would join.
    void endStep() { m_lastCoalescedUndoDate.reset(); }

    // The state to go back to, or forward; nothing when there is none.
    std::optional<StudioHistorySnapshot> undo(const StudioHistorySnapshot& current);
    std::optional<StudioHistorySnapshot> redo(const StudioHistorySnapshot& current);

    // A second begin without an end goes on with the first gesture.
    void beginCanvasEdit(const StudioHistorySnapshot& current);
    bool isCanvasEditActive() const { return m_activeCanvasEditSnapshot.has_value(); }
    // Ends the gesture; nothing when none was under way.
    std::optional<StudioHistorySnapshot> endCanvasEdit();

    // Changes every state that may come back, by what is no edit: payments.
    void amend(const std::function<void(StudioHistorySnapshot&)>& apply);

    void clear();

private:
    static std::optional<StudioHistorySnapshot> step(QList<StudioHistorySnapshot>& from,
                                                     QList<StudioHistorySnapshot>& to,
                                                     const StudioHistorySnapshot& current);

    QList<StudioHistorySnapshot> m_undoStack, m_redoStack;    // oldest first
    Step m_lastStep = Step::own();                            // the one on top of the undo stack
    std::optional<Time> m_lastCoalescedUndoDate;    // of the last change that may be joined
    std::optional<StudioHistorySnapshot> m_activeCanvasEditSnapshot;
};
