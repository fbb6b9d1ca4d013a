#include "studio/Activity.h"

#include "platform/Log.h"

#include <algorithm>

namespace {

const char* notedName(Activity::Kind kind)
{
    switch (kind) {
    case Activity::Kind::account:
        return "account";
    case Activity::Kind::restoring:
        return "restoring";
    case Activity::Kind::importing:
        return "importing";
    case Activity::Kind::generating:
        return "generating";
    case Activity::Kind::exporting:
        return "exporting";
    case Activity::Kind::publishing:
        break;
    }
    return "publishing";
}

}    // namespace

std::optional<double> Activity::fraction() const
{
    if (total == unknown)
        return std::nullopt;
    return total > 0 ? double(done) / double(total) : 0.0;
}

void Activities::set(const Activity& activity)
{
    if (m_running.insert_or_assign(activity.kind, activity).second)
        m_began[activity.kind].start();
}

void Activities::end(Activity::Kind kind)
{
    if (m_running.erase(kind) > 0)
        qCInfo(logWork).noquote() << notedName(kind) << "ended after" << m_began[kind].elapsed()
                                  << "ms";
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
