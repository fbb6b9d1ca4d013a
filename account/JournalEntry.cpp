#include "account/JournalEntry.h"

#include "model/GuardedJson.h"
#include "model/JsonMapping.h"
#include "platform/PreferencesStore.h"

#include <QUrl>

template <>
struct json::JsonFields<OpenReservation> {
    static constexpr auto fields = std::tuple{required("requestId", &OpenReservation::requestId),
                                              required("account", &OpenReservation::account),
                                              required("what", &OpenReservation::what),
                                              required("run", &OpenReservation::run),
                                              required("cost", &OpenReservation::cost),
                                              required("isReserved", &OpenReservation::isReserved),
                                              required("lateUntil", &OpenReservation::lateUntil),
                                              required("lateBefore", &OpenReservation::lateBefore),
                                              required("covers", &OpenReservation::covers),
                                              optional("deniedAt", &OpenReservation::deniedAt)};
};

QString keyPrefixOf(const QString& account)
{
    return entryPrefix.toString() + QString::fromLatin1(QUrl::toPercentEncoding(account)) + u' ';
}

std::optional<OpenReservation> entryAt(const QString& key, const PreferencesStore& preferences)
{
    const auto stored = preferences.value(key);
    OpenReservation entry;
    return stored && json::read(json::parsedWithCare(*stored), entry) ? std::optional(entry)
                                                                      : std::nullopt;
}

QByteArray writtenEntry(const OpenReservation& entry)
{
    return json::written(entry);
}
