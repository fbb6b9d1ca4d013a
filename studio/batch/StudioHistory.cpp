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

void StudioHistory::registerUndo(const StudioHistorySnapshot& before,
                                 const StudioHistorySnapshot& current, Changes changes, Time now)
{
    if (isCanvasEditActive() || before == current)
        return;
    const bool isContinuous = changes == Changes::continuous;
    // Measured from the last change, not from the first: a stream of them stays one step.
    const bool isMerged = isContinuous && m_lastCoalescedUndoDate &&
                          now - *m_lastCoalescedUndoDate < coalescingWindow &&
                          !m_undoStack.isEmpty();
    if (isMerged) {
        m_lastCoalescedUndoDate = now;
        return;
    }
    if (m_undoStack.isEmpty() || !(m_undoStack.last() == before))
        push(m_undoStack, before);
    m_lastCoalescedUndoDate = isContinuous ? std::optional(now) : std::nullopt;
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
        endContinuousChanges();
    }
    return target;
}

std::optional<StudioHistorySnapshot> StudioHistory::redo(const StudioHistorySnapshot& current)
{
    auto target = step(m_redoStack, m_undoStack, current);
    if (target) {
        m_activeCanvasEditSnapshot.reset();
        endContinuousChanges();
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
        endContinuousChanges();
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
