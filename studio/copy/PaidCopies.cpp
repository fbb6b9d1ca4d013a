#include "studio/copy/PaidCopies.h"

#include "model/GuardedJson.h"
#include "model/RecordJson.h"
#include "platform/PreferencesStore.h"

using namespace Qt::StringLiterals;

namespace {

const QString paidCopyPrefix = u"moltiva.paidCopy."_s;

QString keyOf(QUuid item)
{
    return paidCopyPrefix + item.toString(QUuid::WithoutBraces);
}

struct StoredCopy {
    GeneratedCopy copy;
    CopyTexts asked;
    QString only;    // raw value of a slot; empty: all
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
                   optional("only", &StoredCopy::only)};
};

}    // namespace json

namespace {

QByteArray bytesOf(const PaidCopy& copy)
{
    const StoredCopy stored{copy.copy, copy.asked, copy.only ? rawValue(*copy.only) : QString()};
    return json::written(stored);
}

std::optional<PaidCopy> paidCopyIn(const QByteArray& bytes)
{
    StoredCopy stored;
    if (!json::read(json::parsedWithCare(bytes), stored))
        return std::nullopt;
    PaidCopy copy{stored.copy, stored.asked, std::nullopt};
    if (!stored.only.isEmpty())
        copy.only = storedValue(stored.only);
    return copy;
}

}    // namespace

Strike PaidCopies::keeping(QUuid item, const PaidCopy& copy, const Strike& strike) const
{
    return [preferences = &m_preferences, key = keyOf(item), bytes = bytesOf(copy), strike] {
        return preferences->setValue(key, bytes) && strike();
    };
}

Strike PaidCopies::removal(const QList<QUuid>& items) const
{
    return [preferences = &m_preferences, items] {
        return std::ranges::all_of(items,
                                   [&](QUuid item) { return preferences->remove(keyOf(item)); });
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
        const auto copy = paidCopyIn(m_preferences.value(keyOf(id)).value_or(QByteArray()));
        if (item == batch.items.end() || !copy)
            continue;
        applyCopy(batch.items.edit(item - batch.items.begin()), copy->copy, copy->asked,
                  copy->only);
        applied.append(id);
    }
    return applied;
}
