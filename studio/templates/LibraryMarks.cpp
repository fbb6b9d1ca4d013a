#include "studio/templates/LibraryMarks.h"

#include "model/GuardedJson.h"
#include "platform/PreferencesStore.h"

using namespace Qt::StringLiterals;

namespace {

const QString marksKey = u"moltiva.templateLibrary"_s;
constexpr int storingRest = 1000;      // ms
constexpr qsizetype mostUsed = 100;    // enough for the last few of every format

struct StoredMarks {
    QList<QUuid> favourites, used;
    QStringList folded;
};

}    // namespace

template <>
struct json::JsonFields<StoredMarks> {
    static constexpr auto fields =
        std::tuple{optional("favourites", &StoredMarks::favourites),
                   optional("used", &StoredMarks::used), optional("folded", &StoredMarks::folded)};
};

LibraryMarks::LibraryMarks(PreferencesStore& preferences) : m_preferences(preferences)
{
    StoredMarks stored;
    const json::Value value =
        json::parsedWithCare(preferences.value(marksKey).value_or(QByteArray()));
    if (json::read(value, stored)) {
        m_favourites = {stored.favourites.cbegin(), stored.favourites.cend()};
        m_used = stored.used.first(std::min(stored.used.size(), mostUsed));
        m_folded = {stored.folded.cbegin(), stored.folded.cend()};
    }
    m_storeLater.setSingleShot(true);
    m_storeLater.setInterval(storingRest);
    m_storeLater.callOnTimeout([this] { store(); });
}

LibraryMarks::~LibraryMarks()
{
    if (m_storeLater.isActive())
        store();
}

void LibraryMarks::setFavourite(QUuid id, bool favourite)
{
    if (favourite)
        m_favourites.insert(id);
    else
        m_favourites.remove(id);
    m_storeLater.start();
}

void LibraryMarks::noteUsed(QUuid id)
{
    m_used.removeOne(id);
    m_used.prepend(id);
    m_used.resize(std::min(m_used.size(), mostUsed));
    m_storeLater.start();
}

void LibraryMarks::setFolded(const QString& section, bool folded)
{
    if (folded)
        m_folded.insert(section);
    else
        m_folded.remove(section);
    m_storeLater.start();
}

void LibraryMarks::store()
{
    StoredMarks marks{m_favourites.values(), m_used, m_folded.values()};
    std::ranges::sort(marks.favourites);
    marks.folded.sort();
    m_preferences.setValue(marksKey, json::written(marks));
}
