#pragma once

#include "templates/TemplateName.h"

#include <QList>
#include <QUuid>

#include <algorithm>
#include <optional>
#include <utility>

// Entries that the user has saved under names, newest first. callBack() brings back removed and
// replaced entries while the program runs.
template <typename Entry>
class NamedList {
public:
    NamedList() = default;
    explicit NamedList(QList<Entry> entries) : m_entries(std::move(entries)) {}

    const QList<Entry>& entries() const { return m_entries; }
    const Entry* find(QUuid id) const
    {
        const auto found = std::ranges::find(m_entries, id, &Entry::id);
        return found == m_entries.cend() ? nullptr : &*found;
    }

    // `word` with the first number that gives an unused name: "Plantilla 3".
    QString freeName(const QString& word) const
    {
        for (int number = 1;; ++number) {
            const QString name = QStringLiteral("%1 %2").arg(word).arg(number);
            if (std::ranges::find(m_entries, name, &Entry::name) == m_entries.cend())
                return name;
        }
    }

    void add(const Entry& entry) { m_entries.prepend(entry); }

    // A name of blanks only is refused. Returns whether anything changed.
    bool rename(QUuid id, const QString& text)
    {
        const QString name = templateName(text);
        return !name.isEmpty() && change(id, [&](Entry& entry) { entry.name = name; });
    }

    // Changes an entry. Returns false if there is no entry with this id, or `apply` changed
    // nothing.
    template <typename Change>
    bool change(QUuid id, Change apply)
    {
        const auto found = std::ranges::find(std::as_const(m_entries), id, &Entry::id);
        if (found == m_entries.cend())
            return false;
        Entry changed = *found;
        apply(changed);
        if (changed == *found)
            return false;
        m_entries[found - m_entries.cbegin()] = changed;
        return true;
    }

    // Like change(), but callBack() can bring back the old version as an additional entry.
    template <typename Change>
    bool replace(QUuid id, Change apply)
    {
        const Entry* found = find(id);
        if (!found)
            return false;
        Entry before = *found;
        if (!change(id, apply))
            return false;
        before.id = QUuid::createUuid();
        m_removed.append({0, before});
        return true;
    }

    bool remove(QUuid id)
    {
        const auto found = std::ranges::find(std::as_const(m_entries), id, &Entry::id);
        if (found == m_entries.cend())
            return false;
        const qsizetype index = found - m_entries.cbegin();
        m_removed.append({index, m_entries.takeAt(index)});
        return true;
    }

    // The name of the entry that callBack() would bring back; empty when there is none.
    QString lastRemoved() const
    {
        return m_removed.isEmpty() ? QString() : m_removed.last().second.name;
    }

    std::optional<Entry> callBack()
    {
        if (m_removed.isEmpty())
            return std::nullopt;
        auto [index, entry] = m_removed.takeLast();
        if (find(entry.id))    // the entry was added again from a file meanwhile
            entry.id = QUuid::createUuid();
        m_entries.insert(std::min(index, m_entries.size()), entry);
        return entry;
    }

private:
    QList<Entry> m_entries;
    QList<std::pair<qsizetype, Entry>> m_removed;    // each with the index for callBack()
};
