#include "studio/batch/StudioHistory.h"

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto coalescingWindow = 800ms;
constexpr qsizetype mostSteps = 20;

void push(QList<StudioHistorySnapshot>& stack, const StudioHistorySnapshot& snapshot)
{
    stack.append(snapshot);
    if (stack.size() > mostSteps)
        stack.remove(0, stack.size() - mostSteps);
}

}    // namespace

bool StudioHistory::isStepOpen(Time now) const
{
    return m_lastStep.isJoined() && m_lastCoalescedUndoDate &&
           now - *m_lastCoalescedUndoDate < coalescingWindow;
}

const StudioHistorySnapshot* StudioHistory::beforeRun(const Step& run) const
{
    const bool isOpen = run == m_lastStep && m_lastCoalescedUndoDate && !m_undoStack.isEmpty();
    return isOpen ? &m_undoStack.last() : nullptr;
}

void StudioHistory::endJoinedStep()
{
    if (m_lastStep.isJoined())
        endStep();
}

void StudioHistory::registerUndo(const StudioHistorySnapshot& before,
                                 const StudioHistorySnapshot& current, const Step& step, Time now)
{
    if (isCanvasEditActive() || before == current)
        return;
    const bool mayJoin = step.isJoined() || step.isRun();
    // Measures the pause since the last change, not since the first: a long series of changes is
    // one step.
    const bool isMerged = mayJoin && step == m_lastStep && m_lastCoalescedUndoDate &&
                          (step.isRun() || now - *m_lastCoalescedUndoDate < coalescingWindow) &&
                          !m_undoStack.isEmpty();
    m_lastStep = step;
    m_lastCoalescedUndoDate = mayJoin ? std::optional(now) : std::nullopt;
    if (isMerged)
        return;
    if (m_undoStack.isEmpty() || !(m_undoStack.last() == before))
        push(m_undoStack, before);
    m_redoStack.clear();
}

std::optional<StudioHistorySnapshot> StudioHistory::step(QList<StudioHistorySnapshot>& from,
                                                         QList<StudioHistorySnapshot>& to,
                                                         const StudioHistorySnapshot& current)
{
    if (from.isEmpty())
        return std::nullopt;
    const StudioHistorySnapshot target = from.takeLast();
    push(to, current);
    return target;
}

std::optional<StudioHistorySnapshot> StudioHistory::undo(const StudioHistorySnapshot& current)
{
    auto target = step(m_undoStack, m_redoStack, current);
    if (target) {
        m_activeCanvasEditSnapshot.reset();
        endStep();
    }
    return target;
}

std::optional<StudioHistorySnapshot> StudioHistory::redo(const StudioHistorySnapshot& current)
{
    auto target = step(m_redoStack, m_undoStack, current);
    if (target) {
        m_activeCanvasEditSnapshot.reset();
        endStep();
    }
    return target;
}

void StudioHistory::beginCanvasEdit(const StudioHistorySnapshot& current)
{
    if (!m_activeCanvasEditSnapshot)
        m_activeCanvasEditSnapshot = current;
}

std::optional<StudioHistorySnapshot> StudioHistory::endCanvasEdit()
{
    if (m_activeCanvasEditSnapshot)
        endJoinedStep();
    return std::exchange(m_activeCanvasEditSnapshot, std::nullopt);
}

void StudioHistory::amend(const std::function<void(StudioHistorySnapshot&)>& apply)
{
    std::ranges::for_each(m_undoStack, apply);
    std::ranges::for_each(m_redoStack, apply);
    if (m_activeCanvasEditSnapshot)
        apply(*m_activeCanvasEditSnapshot);
}

void StudioHistory::clear()
{
    *this = StudioHistory();
}
