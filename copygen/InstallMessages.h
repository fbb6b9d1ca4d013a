#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// The installer's progress file, as far as it can be read.
struct GemmaInstallProgressSnapshot {
    QString stage;
    std::optional<double> fraction;      // of the whole installation, 0 to 1
    std::optional<qint64> totalBytes;    // of the model; absent while unknown

    bool operator==(const GemmaInstallProgressSnapshot&) const = default;
};

std::optional<GemmaInstallProgressSnapshot> readProgressSnapshot(const QByteArray& json);

// What is told while installing, part by part.
struct InstallMessage {
    QString work;         // "Descargando Gemma... 2,04 GB de 3,40 GB"
    QString remaining;    // "quedan 4 min"; empty while unknown

    QString text() const;    // both, as one sentence
};

// `speed` in bytes a second.
InstallMessage makeInstallMessage(const std::optional<GemmaInstallProgressSnapshot>& snapshot,
                                  qint64 downloadedBytes, std::optional<qint64> totalBytes,
                                  std::optional<double> speed);

// 0 to 1; nothing while neither the snapshot nor the total tells how far it is.
std::optional<double>
makeInstallProgress(const std::optional<GemmaInstallProgressSnapshot>& snapshot,
                    qint64 downloadedBytes, std::optional<qint64> totalBytes);

// "850 MB", "3,40 GB": decimal units.
QString formatBytes(qint64 bytes);

// "38 s", "4 min", "1 h 1 min".
QString formatDuration(qint64 seconds);
