#include "studio/Activity.h"

#include <algorithm>

std::optional<double> Activity::fraction() const
{
    if (total == unknown)
        return std::nullopt;
    return total > 0 ? double(done) / double(total) : 0.0;
}

const Activity* Activities::find(Activity::Kind kind) const
{
    const auto found = m_running.find(kind);
    return found == m_running.end() ? nullptr : &found->second;
}

const Activity* Activities::foremost() const
{
    return m_running.empty() ? nullptr : &m_running.rbegin()->second;
}

void Activities::stop(Activity::Kind kind) const
{
    const Activity* running = find(kind);
    // Copies `stop` before the call, which may end the activity and so destroy the original.
    if (const auto ask = running ? running->stop : nullptr)
        ask();
}

const Activity* Activities::delayingClosing() const
{
    const auto found = std::ranges::find_if(
        m_running, [](const auto& running) { return running.second.delaysClosing; });
    return found == m_running.end() ? nullptr : &found->second;
}
