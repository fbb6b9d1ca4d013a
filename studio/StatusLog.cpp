#include "studio/StatusLog.h"

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype mostEntries = 50;
constexpr std::chrono::seconds timeToRead{3};

}    // namespace

StatusLog::StatusLog(Clock clock, Calendar calendar)
    : m_clock(std::move(clock)), m_calendar(std::move(calendar))
{
}

const StatusEntry& StatusLog::current() const
{
    if (m_question)
        return *m_question;
    static const StatusEntry nothing;
    const auto newest = std::find_if(m_entries.crbegin(), m_entries.crend(),
                                     [](const StatusEntry& entry) { return !entry.isOutdated; });
    return newest == m_entries.crend() ? nothing : *newest;
}

void StatusLog::append(StatusEntry entry)
{
    entry.time = m_calendar();
    entry.told = m_clock();
    m_entries.append(entry);
    if (m_entries.size() > mostEntries)
        m_entries.removeFirst();
}

// Outdates the entries for which `matches` is true. Returns whether that changes current().
template <typename Matches>
bool StatusLog::outdateWhere(Matches matches)
{
    const StatusEntry before = current();
    for (StatusEntry& entry : m_entries)
        entry.isOutdated |= matches(entry);
    return current() != before;
}

void StatusLog::tell(const QString& sentence, StatusKind kind, const StatusLink& link)
{
    const auto isAgain = [&](const StatusEntry& last) {
        return !last.isOutdated && last.kind == kind && last.sentence == sentence;
    };
    if (!m_entries.isEmpty() && isAgain(m_entries.last()))
        m_entries.removeLast();
    outdateWhere([](const StatusEntry& entry) { return !entry.activity; });
    if (!sentence.isEmpty())
        append({.kind = kind, .sentence = sentence, .link = link});
    if (!std::exchange(m_isToldInThisTurn, true)) {
        QMetaObject::invokeMethod(
            this, [this] { m_isToldInThisTurn = false; }, Qt::QueuedConnection);
    }
    Q_EMIT changed();
    if (!sentence.isEmpty())
        Q_EMIT told({.kind = kind, .sentence = sentence, .link = link});
}

void StatusLog::ask(const QString& question, const StatusLink& link)
{
    append({.kind = StatusKind::warning, .sentence = question, .link = link, .isOutdated = true});
    m_question = m_entries.last();
    Q_EMIT changed();
}

void StatusLog::endQuestion()
{
    if (!m_question)
        return;
    m_question.reset();
    Q_EMIT changed();
}

void StatusLog::tellStep(Activity::Kind activity, const QString& sentence)
{
    m_entries.removeIf([activity](const StatusEntry& entry) {
        return !entry.isOutdated && entry.activity == activity;
    });
    append({.kind = StatusKind::working, .sentence = sentence, .activity = activity});
    Q_EMIT changed();
}

void StatusLog::endSteps(Activity::Kind activity)
{
    if (outdateWhere([activity](const StatusEntry& entry) { return entry.activity == activity; }))
        Q_EMIT changed();
}

void StatusLog::outdate()
{
    if (m_isToldInThisTurn)
        return;
    const bool isOther = outdateWhere([this](const StatusEntry& entry) {
        return !entry.activity && !isUnread(entry) && entry.link.details.isEmpty() &&
               entry.link.actions.isEmpty();
    });
    if (isOther)
        Q_EMIT changed();
}

bool StatusLog::isUnread(const StatusEntry& entry) const
{
    const bool isProblem = entry.kind == StatusKind::warning || entry.kind == StatusKind::error;
    return isProblem && m_clock() - entry.told < timeToRead;
}

bool StatusLog::isProblemUnread() const
{
    return isUnread(current());
}
