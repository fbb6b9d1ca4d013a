#pragma once

#include "model/Pace.h"
#include "studio/batch/StudioHistory.h"

#include <QObject>

#include <functional>

// The batch under edit, with its history. Every change of the batch goes through here, and belongs
// to a step.
class Editing : public QObject {
    Q_OBJECT
public:
    using Clock = std::function<StudioHistory::Time()>;
    using Change = std::function<void(Batch&)>;
    // Kind of a change. Undo, redo and the end of a gesture are `state`: anything may have changed.
    enum class Outcome { nothing, selection, edit, state };

    explicit Editing(Clock clock) : m_clock(std::move(clock)) {}

    const Batch& batch() const { return m_batch; }
    const StudioHistory& history() const { return m_history; }

    // Records changes in the history from now on.
    void start() { m_isRecording = true; }
    // Replaces the batch without an undo step or a signal.
    void replace(const Batch& batch);

    void change(const Change& apply, const Step& step = Step::joined(), Pace pace = Pace::once);
    // Applies the result of work that went on while the user edited. First ends a gesture. The step
    // is recorded even during an undo, and changes that receivers of changed() make in reply belong
    // to it.
    void bringBack(const Change& apply, const Step& run = Step::run());

    void beginCanvasHistoryEdit();
    void endCanvasHistoryEdit(QUuid movedLayer);
    bool isGestureActive() const { return m_history.isCanvasEditActive(); }

    // The state to return to, for applyHistorySnapshot(); empty when there is none.
    std::optional<StudioHistorySnapshot> takeUndo() { return m_history.undo(m_batch); }
    std::optional<StudioHistorySnapshot> takeRedo() { return m_history.redo(m_batch); }
    void applyHistorySnapshot(const StudioHistorySnapshot& snapshot);

    // Changes the batch and all states of the history by something that is no edit: payments. Emits
    // nothing.
    void amend(const Change& apply);

Q_SIGNALS:
    // Another state comes next: receivers now end what is being typed or dragged, as an edit of
    // this one.
    void aboutToMove();
    void changed(Editing::Outcome outcome, Pace pace);

private:
    void registerUndo(const Batch& before, const Step& step);

    Clock m_clock;
    Batch m_batch;
    StudioHistory m_history;
    bool m_isRecording = false;
    bool m_isApplyingHistory = false;
    std::optional<Step> m_run;    // the step of a bringBack() under way
};
