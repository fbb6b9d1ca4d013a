#pragma once

#include "model/Pace.h"
#include "studio/batch/StudioHistory.h"

#include <QObject>

#include <functional>

// Holds the batch that the user edits, with its undo history. Every change of the batch is made
// through this class.
class Editing : public QObject {
    Q_OBJECT
public:
    using Clock = std::function<StudioHistory::Time()>;
    using Change = std::function<void(Batch&)>;
    // What a change affected: nothing, only the selection, or the content (`edit`). After undo,
    // redo or the end of a gesture it is `state`: anything may have changed.
    enum class Outcome { nothing, selection, edit, state };

    explicit Editing(Clock clock) : m_clock(std::move(clock)) {}

    const Batch& batch() const { return m_batch; }
    const StudioHistory& history() const { return m_history; }

    // Starts to record changes in the history.
    void start() { m_isRecording = true; }
    // Replaces the batch and clears the history. Emits nothing.
    void replace(const Batch& batch);

    void change(const Change& apply, const Step& step = Step::joined(), Pace pace = Pace::once);
    // Applies the result of work during which the user could go on editing. First ends a gesture
    // under way. The change is recorded even while an undo is being applied. Changes that receivers
    // of changed() make in response belong to the same step.
    void bringBack(const Change& apply, const Step& run = Step::run());

    // Like bringBack(), but leaves editors open. Call it while nobody types or drags.
    void bringBackQuietly(const Change& apply, const Step& run);
    // Whether a change just before may be joined by another: somebody types or drags a slider.
    bool isStepOpen() const { return m_history.isStepOpen(m_clock()); }

    void beginCanvasHistoryEdit();
    void endCanvasHistoryEdit(QUuid movedLayer);
    bool isGestureActive() const { return m_history.isCanvasEditActive(); }

    // Take the state to restore from the history, for applyHistorySnapshot(); empty if there is
    // none.
    std::optional<StudioHistorySnapshot> takeUndo() { return m_history.undo(m_batch); }
    std::optional<StudioHistorySnapshot> takeRedo() { return m_history.redo(m_batch); }
    void applyHistorySnapshot(const StudioHistorySnapshot& snapshot);

    // Applies to the batch and to all states in the history a change that undo must not revert,
    // such as a payment. Emits nothing.
    void amend(const Change& apply);

Q_SIGNALS:
    // Emitted before another state replaces the present one. Receivers finish what is being typed
    // or dragged, while that still edits the present state.
    void aboutToMove();
    void changed(Editing::Outcome outcome, Pace pace);

private:
    void registerUndo(const Batch& before, const Step& step);

    Clock m_clock;
    Batch m_batch;
    StudioHistory m_history;
    bool m_isRecording = false;
    bool m_isApplyingHistory = false;
    std::optional<Step> m_run;    // the step of the bringBack() under way, if any
};
