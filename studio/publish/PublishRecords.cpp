#include "studio/publish/PublishRecords.h"

#include "account/AccountRecords.h"
#include "model/GuardedJson.h"
#include "platform/PreferencesStore.h"
#include "platform/ProgramRun.h"

using namespace Qt::StringLiterals;

namespace {

struct StoredRecord : PublishRecord {
    QString run;        // ProgramRun::name() of the run that sends it
    qint64 sent = 0;    // `time`, in ms since the epoch
};

struct RecordStateRow {
    PublishRecord::State value;
    QStringView rawValue;
};

QString recordPrefix(const QString& account)
{
    return u"moltiva.publication."_s + QString::fromLatin1(QUrl::toPercentEncoding(account)) + u' ';
}

template <typename T>
void cut(QList<T>& list, qsizetype most)
{
    list.resize(std::min(list.size(), most));
}

QStringList sorted(QStringList names)
{
    names.sort();
    return names;
}

// Each story is a post of its own; the images of a feed are one post.
bool areSameImages(const QStringList& some, const QStringList& others,
                   SocialPublishPlacement placement)
{
    if (placement == SocialPublishPlacement::feed)
        return some.size() == others.size() && sorted(some) == sorted(others);
    return std::ranges::any_of(some, [&](const QString& name) { return others.contains(name); });
}

}    // namespace

template <>
struct Vocabulary<PublishRecord::State> {
    static constexpr std::array rows{
        RecordStateRow{PublishRecord::State::sending, u"sending"},
        RecordStateRow{PublishRecord::State::published, u"published"},
        RecordStateRow{PublishRecord::State::unknown, u"unknown"},
    };
};
static_assert(rowsAreInOrder<PublishRecord::State>());

template <>
struct json::JsonFields<StoredRecord> {
    static constexpr auto fields =
        std::tuple{required("id", &StoredRecord::id),
                   required("state", &StoredRecord::state, PublishRecord::State::unknown),
                   required("run", &StoredRecord::run),
                   required("requestId", &StoredRecord::requestId),
                   required("network", &StoredRecord::network),
                   required("placement", &StoredRecord::placement),
                   required("caption", &StoredRecord::caption),
                   required("images", &StoredRecord::images),
                   required("renders", &StoredRecord::renders),
                   lenient("pictures", &StoredRecord::pictures),
                   required("time", &StoredRecord::sent),
                   lenient("url", &StoredRecord::url)};

    static void repair(StoredRecord& record)
    {
        constexpr qsizetype mostImages = 25, largestPicture = 32 * 1024;
        cut(record.images, mostImages);
        cut(record.renders, mostImages);
        cut(record.pictures, PublishRecords::mostPictures);
        record.pictures.removeIf(
            [](const QByteArray& picture) { return picture.size() > largestPicture; });
        record.url = pageOfPost(record.url);
        record.time = QDateTime::fromMSecsSinceEpoch(record.sent, Qt::UTC);
    }
};

namespace {

std::optional<StoredRecord> storedAt(const PreferencesStore& preferences, const QString& key)
{
    constexpr qsizetype largestValue = 512 * 1024;
    const auto bytes = preferences.value(key);
    StoredRecord stored;
    if (!bytes || bytes->size() > largestValue ||
        !json::read(json::parsedWithCare(*bytes), stored) || !stored.time.isValid() ||
        !key.endsWith(u' ' + stored.id.toString(QUuid::WithoutBraces)))
        return std::nullopt;
    return stored;
}

}    // namespace

PublishRecords::PublishRecords(PreferencesStore& preferences, const QString& account,
                               ProgramRun& run)
    : m_preferences(preferences), m_account(account), m_run(run.name())
{
    refresh(run);
}

// Reading hundreds of records takes longer than a frame, so published ones, which never change, are
// read once.
void PublishRecords::refresh(const ProgramRun& run)
{
    const QStringList keys = m_preferences.keysBeginningWith(recordPrefix(m_account));
    QSet<QString> missing(keys.begin(), keys.end());
    m_records.removeIf([&](const PublishRecord& record) {
        return record.state != PublishRecord::State::published || !missing.remove(keyOf(record.id));
    });
    for (const QString& key : std::as_const(missing)) {
        auto record = storedAt(m_preferences, key);
        if (!record)
            continue;
        if (record->state == PublishRecord::State::sending && !run.isGoingOn(record->run))
            record->state = PublishRecord::State::unknown;
        m_records.append(*record);
    }
    std::ranges::stable_sort(m_records, std::ranges::greater(), &PublishRecord::time);
}

QString PublishRecords::keyOf(QUuid id) const
{
    return recordPrefix(m_account) + id.toString(QUuid::WithoutBraces);
}

bool PublishRecords::store(const PublishRecord& record)
{
    StoredRecord stored;
    static_cast<PublishRecord&>(stored) = record;
    stored.run = m_run;
    stored.sent = record.time.toMSecsSinceEpoch();
    return m_preferences.setValue(keyOf(record.id), json::written(stored));
}

void PublishRecords::takeOut(QUuid id)
{
    m_records.removeIf([&](const PublishRecord& each) { return each.id == id; });
}

void PublishRecords::insert(const PublishRecord& record)
{
    takeOut(record.id);
    const auto place = std::ranges::find_if(
        m_records, [&](const PublishRecord& each) { return each.time <= record.time; });
    m_records.insert(place, record);
}

bool PublishRecords::keep(const PublishRecord& record)
{
    insert(record);
    while (m_records.size() > mostRecords)
        m_preferences.remove(keyOf(m_records.takeLast().id));
    return store(record);
}

bool PublishRecords::remove(QUuid id)
{
    takeOut(id);
    return m_preferences.remove(keyOf(id));
}

const PublishRecord* PublishRecords::sent(const QStringList& renders, SocialPublishNetwork network,
                                          SocialPublishPlacement placement) const
{
    const auto found = std::ranges::find_if(m_records, [&](const PublishRecord& record) {
        return record.network == network && record.placement == placement &&
               areSameImages(record.renders, renders, placement);
    });
    return found == m_records.end() ? nullptr : &*found;
}

bool PublishRecords::beginAttempt(const PublishRecord& record, const ProgramRun& run,
                                  std::optional<PublishRecord>& newer)
{
    const QList<PublishRecord> known = m_records;
    const auto isNews = [&](const PublishRecord& each) {
        return each.network == record.network && each.placement == record.placement &&
               areSameImages(each.renders, record.renders, record.placement) &&
               std::ranges::none_of(known, [&](const PublishRecord& before) {
                   return before.id == each.id && (before.state == each.state ||
                                                   each.state != PublishRecord::State::published);
               });
    };
    const auto work = [&] {
        refresh(run);
        const auto found = std::ranges::find_if(m_records, isNews);
        if (found != m_records.end())
            newer = *found;
        return !newer && keep(record);
    };
    const bool isStored = m_preferences.transaction(work, PreferencesStore::Durability::onDisk);
    if (!isStored)
        refresh(run);    // without `record`
    return isStored;
}

void PublishRecords::endAttempt(QUuid attempt, const std::optional<PublishRecord>& record)
{
    std::optional<StoredRecord> others;
    const auto work = [&] {
        others = storedAt(m_preferences, keyOf(attempt));
        if (others && others->run == m_run && others->state == PublishRecord::State::sending)
            others.reset();
        if (others)
            return false;
        return record ? store(*record) : m_preferences.remove(keyOf(attempt));
    };
    m_preferences.transaction(work);
    takeOut(attempt);
    if (others)
        insert(*others);
    else if (record)
        insert(*record);
}
