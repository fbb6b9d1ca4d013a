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
    // What a change came to. A step back or forward, and the end of a gesture, are whole states.
    enum class Outcome { nothing, selection, edit, state };

    explicit Editing(Clock clock) : m_clock(std::move(clock)) {}

    const Batch& batch() const { return m_batch; }
    const StudioHistory& history() const { return m_history; }

    // From now on changes are recorded.
    void start() { m_isRecording = true; }
    // A batch to begin with, with nothing to undo. Nobody is told.
    void replace(const Batch& batch);

    void change(const Change& apply, const Step& step = Step::joined(), Pace pace = Pace::once);
    // What work under way brings back, whatever the user is in the middle of: a gesture ends before
    // it, and the step is recorded also in the turn of an undo. What those who hear of it write
    // back belongs to it.
    void bringBack(const Change& apply, const Step& run = Step::run());

    void beginCanvasHistoryEdit();
    void endCanvasHistoryEdit(QUuid movedLayer);
    bool isGestureActive() const { return m_history.isCanvasEditActive(); }

    // The state to go back or forward to, for applyHistorySnapshot(); nothing when there is none.
    std::optional<StudioHistorySnapshot> takeUndo() { return m_history.undo(m_batch); }
    std::optional<StudioHistorySnapshot> takeRedo() { return m_history.redo(m_batch); }
    void applyHistorySnapshot(const StudioHistorySnapshot& snapshot);

    // Changes the batch and every state that may come back by what is no edit: payments. Nobody is
    // told.
    void amend(const Change& apply);

Q_SIGNALS:
    // Another state comes next: what is still being typed or dragged belongs to this one.
    void aboutToMove();
    void changed(Editing::Outcome outcome, Pace pace);

private:
    void registerUndo(const Batch& before, const Step& step);

    Clock m_clock;
    Batch m_batch;
    StudioHistory m_history;
    bool m_isRecording = false;
    bool m_isApplyingHistory = false;
    std::optional<Step> m_run;    // while it is brought back
};
