#include "cli/StoredCopies.h"

#include "model/GuardedJson.h"
#include "model/RecordJson.h"
#include "platform/PreferencesStore.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

const QString storedCopyPrefix = u"moltiva.generatedCopy."_s;
const QString sheetOrderPrefix = u"moltiva.generatedSheet."_s;
constexpr qint64 longestKept = 30LL * 24 * 60 * 60 * 1000;    // ms

struct DatedCopy {
    GeneratedCopy copy;
    qint64 written = 0;    // ms since the epoch
};

struct DatedOrder {
    QString request;    // digestOfRequest()
    qint64 written = 0;
};

QByteArray digestOfParts(const QByteArrayList& parts)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QByteArray& part : parts) {
        hash.addData(QByteArray::number(part.size()) + ' ');
        hash.addData(part);
    }
    return hash.result().toHex();
}

QByteArray digestOfRequest(const CopyRequest& request)
{
    return digestOfParts({rawValue(request.mode).toUtf8(), request.photo,
                          rawValue(request.format).toUtf8(), request.objective.toUtf8()});
}

QString keyOf(const CopyRequest& request)
{
    return storedCopyPrefix + QString::fromLatin1(digestOfRequest(request));
}

QString keyOf(const SheetOrder& order)
{
    const QByteArray path = QFileInfo(order.file).canonicalFilePath().toUtf8();
    return sheetOrderPrefix + QString::fromLatin1(digestOfParts({path}));
}

}    // namespace

template <>
struct json::JsonFields<DatedCopy> {
    static constexpr auto fields =
        std::tuple{required("copy", &DatedCopy::copy), required("written", &DatedCopy::written)};
};

template <>
struct json::JsonFields<DatedOrder> {
    static constexpr auto fields = std::tuple{required("request", &DatedOrder::request),
                                              required("written", &DatedOrder::written)};
};

namespace {

template <typename Dated>
std::optional<Dated> storedAt(const QString& key, const PreferencesStore& preferences)
{
    Dated stored;
    const auto bytes = preferences.value(key);
    return bytes && json::read(json::parsedWithCare(*bytes), stored) ? std::optional(stored)
                                                                     : std::nullopt;
}

template <typename Dated>
void removeOld(PreferencesStore& preferences, const QString& prefix)
{
    const qint64 oldest = QDateTime::currentMSecsSinceEpoch() - longestKept;
    for (const QString& key : preferences.keysBeginningWith(prefix)) {
        const auto stored = storedAt<Dated>(key, preferences);
        if (!stored || stored->written < oldest)
            preferences.remove(key);
    }
}

}    // namespace

std::optional<GeneratedCopy> storedCopy(const PreferencesStore& preferences,
                                        const CopyRequest& request)
{
    const auto stored = storedAt<DatedCopy>(keyOf(request), preferences);
    return stored ? std::optional(stored->copy) : std::nullopt;
}

bool storeCopy(PreferencesStore& preferences, const CopyRequest& request, const GeneratedCopy& copy,
               const Strike& strike)
{
    const DatedCopy stored{copy, QDateTime::currentMSecsSinceEpoch()};
    return preferences.transaction([&] {
        return preferences.setValue(keyOf(request), json::written(stored)) && (!strike || strike());
    });
}

bool isLastOrder(const PreferencesStore& preferences, const SheetOrder& order)
{
    const auto stored = storedAt<DatedOrder>(keyOf(order), preferences);
    return stored && stored->request.toLatin1() == digestOfRequest(order.request);
}

bool forgetLastOrder(PreferencesStore& preferences, const SheetOrder& order)
{
    return !preferences.value(keyOf(order)) || preferences.remove(keyOf(order));
}

void keepLastOrder(PreferencesStore& preferences, const SheetOrder& order)
{
    const DatedOrder stored{QString::fromLatin1(digestOfRequest(order.request)),
                            QDateTime::currentMSecsSinceEpoch()};
    preferences.setValue(keyOf(order), json::written(stored));
}

void removeOldCopies(PreferencesStore& preferences)
{
    preferences.transaction([&] {
        removeOld<DatedCopy>(preferences, storedCopyPrefix);
        removeOld<DatedOrder>(preferences, sheetOrderPrefix);
        return true;
    });
}
