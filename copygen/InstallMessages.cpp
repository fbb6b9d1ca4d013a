#include "copygen/InstallMessages.h"

#include "model/GuardedJson.h"

using namespace Qt::StringLiterals;

template <>
struct json::JsonFields<GemmaInstallProgressSnapshot> {
    static constexpr auto fields =
        std::tuple{required("stage", &GemmaInstallProgressSnapshot::stage),
                   optional("fraction", &GemmaInstallProgressSnapshot::fraction),
                   optional("totalBytes", &GemmaInstallProgressSnapshot::totalBytes)};
};

namespace {

// Fractions of the whole installation at which the script begins and ends to download the model.
constexpr double downloadBegins = 0.14, downloadEnds = 0.98;

bool isKnown(std::optional<qint64> total)
{
    return total && *total > 0;
}

}    // namespace

std::optional<GemmaInstallProgressSnapshot> readProgressSnapshot(const QByteArray& text)
{
    GemmaInstallProgressSnapshot snapshot;
    if (!json::read(json::parsedWithCare(text), snapshot))
        return std::nullopt;
    if (!isKnown(snapshot.totalBytes))    // the scripts write 0
        snapshot.totalBytes.reset();
    return snapshot;
}

QString InstallMessage::text() const
{
    return remaining.isEmpty() ? work : work + u" · "_s + remaining;
}

InstallMessage makeInstallMessage(const std::optional<GemmaInstallProgressSnapshot>& snapshot,
                                  qint64 downloadedBytes, std::optional<qint64> totalBytes,
                                  std::optional<double> speed)
{
    const QString stage = snapshot ? snapshot->stage : u"Preparando instalación de Gemma"_s;
    if (!isKnown(totalBytes)) {
        const QString amount = downloadedBytes > 0
                                   ? u" %1 descargados"_s.arg(formatBytes(downloadedBytes))
                                   : QString();
        return {stage + u"..."_s + amount, {}};
    }
    InstallMessage message{
        stage + u"... %1 de %2"_s.arg(formatBytes(downloadedBytes), formatBytes(*totalBytes)), {}};
    const qint64 left = *totalBytes - downloadedBytes;
    if (speed.value_or(0) > 0 && left > 0) {
        // A speed near nothing would give more seconds than a qint64 holds.
        constexpr double longest = 1e9;
        const double seconds = std::min(double(left) / *speed, longest);
        message.remaining = u"quedan "_s + formatDuration(qint64(seconds));
    }
    return message;
}

std::optional<double>
makeInstallProgress(const std::optional<GemmaInstallProgressSnapshot>& snapshot,
                    qint64 downloadedBytes, std::optional<qint64> totalBytes)
{
    const std::optional<double> fraction = snapshot ? snapshot->fraction : std::nullopt;
    if (!isKnown(totalBytes))
        return fraction ? std::optional(std::clamp(*fraction, 0.0, 1.0)) : std::nullopt;
    const double share = std::clamp(double(downloadedBytes) / double(*totalBytes), 0.0, 1.0);
    const double downloading = downloadBegins + (downloadEnds - downloadBegins) * share;
    return std::clamp(std::max(fraction.value_or(0), downloading), 0.0, 1.0);
}

QString formatBytes(qint64 bytes)
{
    constexpr qint64 mega = 1'000'000, giga = 1'000'000'000;
    if (bytes < giga)
        return QString::number((bytes + mega / 2) / mega) + u" MB"_s;
    return QString::number(double(bytes) / giga, 'f', 2).replace(u'.', u',') + u" GB"_s;
}

QString formatDuration(qint64 seconds)
{
    constexpr qint64 minute = 60;
    if (seconds < minute)
        return u"%1 s"_s.arg(std::max<qint64>(1, seconds));
    const qint64 minutes = seconds / minute;
    if (minutes < 60)
        return u"%1 min"_s.arg(minutes);
    const qint64 hours = minutes / 60, rest = minutes % 60;
    return rest == 0 ? u"%1 h"_s.arg(hours) : u"%1 h %2 min"_s.arg(hours).arg(rest);
}
