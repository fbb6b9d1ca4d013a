#include "studio/copy/PaidCopies.h"

#include "model/GuardedJson.h"
#include "model/RecordJson.h"
#include "platform/PreferencesStore.h"

#include <QDateTime>

using namespace Qt::StringLiterals;

namespace {

const QString paidCopyPrefix = u"moltiva.paidCopy."_s;
constexpr qint64 longestKept = 30LL * 24 * 60 * 60 * 1000;    // ms

QString keyOf(QUuid item)
{
    return paidCopyPrefix + item.toString(QUuid::WithoutBraces);
}

struct StoredCopy {
    GeneratedCopy copy;
    CopyTexts asked;
    QString only;          // raw value of a slot; empty: all
    qint64 written = 0;    // ms since the epoch
};

}    // namespace

namespace json {

template <>
struct JsonFields<CopyTexts> {
    static constexpr auto fields =
        std::tuple{required("title", &CopyTexts::title), required("subtitle", &CopyTexts::subtitle),
                   required("tagline", &CopyTexts::tagline),
                   required("callToAction", &CopyTexts::callToAction),
                   required("caption", &CopyTexts::caption)};
};

template <>
struct JsonFields<StoredCopy> {
    static constexpr auto fields =
        std::tuple{required("copy", &StoredCopy::copy), required("asked", &StoredCopy::asked),
                   optional("only", &StoredCopy::only), optional("written", &StoredCopy::written)};
};

}    // namespace json

namespace {

QByteArray bytesOf(const PaidCopy& copy)
{
    const StoredCopy stored{copy.copy, copy.asked, copy.only ? rawValue(*copy.only) : QString(),
                            QDateTime::currentMSecsSinceEpoch()};
    return json::written(stored);
}

std::optional<StoredCopy> storedAt(QUuid item, const PreferencesStore& preferences)
{
    StoredCopy stored;
    const auto bytes = preferences.value(keyOf(item));
    return bytes && json::read(json::parsedWithCare(*bytes), stored) ? std::optional(stored)
                                                                     : std::nullopt;
}

}    // namespace

Strike PaidCopies::keeping(QUuid item, const PaidCopy& copy, const Strike& strike)
{
    const int number = ++m_kept[item];
    return [this, item, number, bytes = bytesOf(copy), strike] {
        const bool isOld = m_kept.value(item) != number;
        return (isOld || m_preferences.setValue(keyOf(item), bytes)) && strike();
    };
}

Strike PaidCopies::removal(const QList<QUuid>& items) const
{
    QHash<QUuid, int> numbers;
    for (const QUuid item : items)
        numbers.insert(item, m_kept.value(item));
    return [this, items, numbers] {
        return std::ranges::all_of(items, [&](QUuid item) {
            const bool isOld = m_kept.value(item) != numbers.value(item);
            return isOld || m_preferences.remove(keyOf(item));
        });
    };
}

bool PaidCopies::store(const Strike& work) const
{
    return m_preferences.transaction(work, PreferencesStore::Durability::onDisk);
}

QList<QUuid> PaidCopies::items() const
{
    QList<QUuid> items;
    for (const QString& key : m_preferences.keysBeginningWith(paidCopyPrefix))
        items.append(QUuid::fromString(key.sliced(paidCopyPrefix.size())));
    return items;
}

QList<QUuid> PaidCopies::applyTo(Batch& batch) const
{
    QList<QUuid> applied;
    for (const QUuid id : items()) {
        const auto item = std::ranges::find(batch.items, id, &PublicationItem::id);
        const auto stored = storedAt(id, m_preferences);
        if (item == batch.items.end() || !stored)
            continue;
        const auto only =
            stored->only.isEmpty() ? std::optional<CopySlot>() : storedValue(stored->only);
        applyCopy(batch.items.edit(item - batch.items.begin()), stored->copy, stored->asked, only);
        applied.append(id);
    }
    return applied;
}

bool PaidCopies::isStored(QUuid item) const
{
    return m_preferences.value(keyOf(item)).has_value();
}

void PaidCopies::removeOthers(const Batch& batch, Others others)
{
    const qint64 oldest = QDateTime::currentMSecsSinceEpoch() - longestKept;
    QList<QUuid> left = items();
    left.removeIf([&](QUuid id) {
        const auto stored = storedAt(id, m_preferences);
        const bool mayReturn = others == Others::mayReturn && stored && stored->written >= oldest;
        return mayReturn || std::ranges::count(batch.items, id, &PublicationItem::id) > 0;
    });
    if (!left.isEmpty())
        store(removal(left));
}
