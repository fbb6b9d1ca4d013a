#include "cli/StoredCopies.h"

#include "model/GuardedJson.h"
#include "model/RecordJson.h"
#include "platform/PreferencesStore.h"

#include <QCryptographicHash>
#include <QDateTime>

using namespace Qt::StringLiterals;

namespace {

const QString storedCopyPrefix = u"moltiva.generatedCopy."_s;
constexpr qint64 longestKept = 30LL * 24 * 60 * 60 * 1000;    // ms

struct DatedCopy {
    GeneratedCopy copy;
    qint64 written = 0;    // ms since the epoch
};

QString keyOf(const CopyRequest& request)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QByteArray& part : {rawValue(request.mode).toUtf8(), request.photo,
                                   rawValue(request.format).toUtf8(), request.objective.toUtf8()}) {
        hash.addData(QByteArray::number(part.size()) + ' ');
        hash.addData(part);
    }
    return storedCopyPrefix + QString::fromLatin1(hash.result().toHex());
}

}    // namespace

template <>
struct json::JsonFields<DatedCopy> {
    static constexpr auto fields =
        std::tuple{required("copy", &DatedCopy::copy), required("written", &DatedCopy::written)};
};

namespace {

std::optional<DatedCopy> copyAt(const QString& key, const PreferencesStore& preferences)
{
    DatedCopy stored;
    const auto bytes = preferences.value(key);
    return bytes && json::read(json::parsedWithCare(*bytes), stored) ? std::optional(stored)
                                                                     : std::nullopt;
}

}    // namespace

std::optional<GeneratedCopy> storedCopy(const PreferencesStore& preferences,
                                        const CopyRequest& request)
{
    const auto stored = copyAt(keyOf(request), preferences);
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

void removeOldCopies(PreferencesStore& preferences)
{
    const qint64 oldest = QDateTime::currentMSecsSinceEpoch() - longestKept;
    preferences.transaction([&] {
        for (const QString& key : preferences.keysBeginningWith(storedCopyPrefix)) {
            const auto stored = copyAt(key, preferences);
            if (!stored || stored->written < oldest)
                preferences.remove(key);
        }
        return true;
    });
}
