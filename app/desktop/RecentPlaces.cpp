#include "app/desktop/RecentPlaces.h"

#include "platform/PreferencesStore.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <mutex>
#include <thread>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString recentKey = u"moltiva.recentPlaces"_s;
// Of the files imported at once, which are looked at while the user waits.
constexpr qsizetype mostLookedAt = 50;

QList<RecentPlace> storedPlaces(const PreferencesStore& preferences)
{
    const QByteArray stored = preferences.value(recentKey).value_or(QByteArray());
    QList<RecentPlace> places;
    for (const QJsonValue& each : QJsonDocument::fromJson(stored).array()) {
        const QJsonObject place = each.toObject();
        const QString path = place[u"path"_s].toString();
        if (!path.isEmpty() && places.size() < RecentPlaces::most)
            places.append({path, place[u"folder"_s].toBool()});
    }
    return places;
}

RecentPlace placeOf(const QUrl& imported, bool isAlone)
{
    const QFileInfo file(imported.toLocalFile());
    if (file.isDir())
        return {file.absoluteFilePath(), true};
    return isAlone ? RecentPlace{file.absoluteFilePath(), false}
                   : RecentPlace{file.absolutePath(), true};
}

}    // namespace

// Who takes what a thread has found. The thread may outlive it on a folder that does not answer.
struct RecentPlaces::Receiver {
    std::mutex mutex;
    RecentPlaces* places;    // guarded by `mutex`; null: gone
};

QString RecentPlace::name() const
{
    const QString last = QFileInfo(path).fileName();
    return last.isEmpty() ? path : last;    // the root folder has no name
}

RecentPlaces::RecentPlaces(PreferencesStore& preferences, QObject* parent)
    : QObject(parent), m_preferences(preferences), m_places(storedPlaces(preferences)),
      m_receiver(std::make_shared<Receiver>())
{
    m_receiver->places = this;
}

RecentPlaces::~RecentPlaces()
{
    const std::scoped_lock lock(m_receiver->mutex);
    m_receiver->places = nullptr;
}

void RecentPlaces::remember(const QList<QUrl>& imported)
{
    QList<RecentPlace> places;
    const auto add = [&places](const RecentPlace& place) {
        if (places.size() < most &&
            std::ranges::find(places, place.path, &RecentPlace::path) == places.end())
            places.append(place);
    };
    for (const QUrl& each : imported.first(std::min(imported.size(), mostLookedAt)))
        add(placeOf(each, imported.size() == 1));
    for (const RecentPlace& place : std::as_const(m_places))
        add(place);
    QJsonArray stored;
    for (const RecentPlace& place : std::as_const(places))
        stored.append(QJsonObject{{u"path"_s, place.path}, {u"folder"_s, place.isFolder}});
    m_preferences.setValue(recentKey, QJsonDocument(stored).toJson(QJsonDocument::Compact));
    show(places);
}

void RecentPlaces::look()
{
    if (m_places.isEmpty())
        return;
    if (m_isLooking) {
        m_looksAgain = true;
        return;
    }
    m_isLooking = true;
    // Nobody waits for this thread: a network folder may never answer.
    std::thread([receiver = m_receiver, looked = m_places]() mutable {
        for (RecentPlace& place : looked)
            place.isLost = !QFileInfo::exists(place.path);
        const std::scoped_lock lock(receiver->mutex);
        if (RecentPlaces* places = receiver->places)
            QMetaObject::invokeMethod(
                places, [places, looked] { places->take(looked); }, Qt::QueuedConnection);
    }).detach();
}

// Takes over what is lost. Other places may have been remembered meanwhile.
void RecentPlaces::take(const QList<RecentPlace>& looked)
{
    QList<RecentPlace> places = m_places;
    for (RecentPlace& place : places) {
        const auto found = std::ranges::find(looked, place.path, &RecentPlace::path);
        if (found != looked.end())
            place.isLost = found->isLost;
    }
    m_isLooking = false;
    show(places);
    if (std::exchange(m_looksAgain, false))
        look();
}

void RecentPlaces::show(const QList<RecentPlace>& places)
{
    if (std::exchange(m_places, places) != places)
        Q_EMIT changed();
}
