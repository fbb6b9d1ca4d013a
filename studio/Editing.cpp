#include "studio/Editing.h"

#include "studio/batch/BatchSelection.h"
#include "studio/batch/LayerEdits.h"

#include <QScopedValueRollback>

void Editing::replace(const Batch& batch)
{
    m_batch = batch;
    m_history.clear();
}

void Editing::change(const Change& apply, const Step& step, Pace pace)
{
    const Batch before = m_batch;
    apply(m_batch);
    if (m_batch == before) {
        Q_EMIT changed(Outcome::nothing, pace);
        return;
    }
    const bool isEdit = m_batch.format != before.format || m_batch.objective != before.objective ||
                        !(m_batch.items == before.items);
    if (isEdit)
        registerUndo(before, m_run.value_or(step));
    Q_EMIT changed(isEdit ? Outcome::edit : Outcome::selection, pace);
}

void Editing::bringBack(const Change& apply, const Step& run)
{
    Q_EMIT aboutToMove();
    endCanvasHistoryEdit({});
    bringBackQuietly(apply, run);
}

void Editing::bringBackQuietly(const Change& apply, const Step& run)
{
    const QScopedValueRollback during(m_run, std::optional(run));
    change(apply);
}

void Editing::registerUndo(const Batch& before, const Step& step)
{
    if (m_isRecording && (!m_isApplyingHistory || step.isRun()))
        m_history.registerUndo(before, m_batch, step, m_clock());
}

void Editing::beginCanvasHistoryEdit()
{
    if (!m_isApplyingHistory)
        m_history.beginCanvasEdit(m_batch);
}

void Editing::endCanvasHistoryEdit(QUuid movedLayer)
{
    if (!isGestureActive())
        return;
    LayerEdits::syncCurrentCanvasEditsToSelectedItems(m_batch, movedLayer);
    const Batch before = *m_history.endCanvasEdit();
    if (before == m_batch)
        return;
    // A gesture that changed only the selection is not an undo step.
    if (!(before.items == m_batch.items))
        registerUndo(before, Step::gesture());
    // Emitted only after registerUndo(), because receivers read the history.
    Q_EMIT changed(Outcome::state, Pace::once);
}

void Editing::applyHistorySnapshot(const StudioHistorySnapshot& snapshot)
{
    m_isApplyingHistory = true;
    m_batch = snapshot;
    BatchSelection::keepInvariants(m_batch, BatchSelection::LayerRule::anyOrNone);
    Q_EMIT changed(Outcome::state, Pace::once);
    // Waits for the next turn of the event loop: receivers of changed() may write the restored
    // values back, which must not be recorded as a new step.
    QMetaObject::invokeMethod(
        this, [this] { m_isApplyingHistory = false; }, Qt::QueuedConnection);
}

void Editing::amend(const Change& apply)
{
    apply(m_batch);
    m_history.amend(apply);
    // Prevents a later change from joining a step recorded before this one.
    m_history.endJoinedStep();
}
