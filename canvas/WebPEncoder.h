#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

// Encodes WebP with the external program cwebp. There is no other encoder: callers handle its
// absence.
namespace WebPEncoder {

// The first of the usual places of cwebp that holds an executable.
std::optional<QString> executableURL();
std::optional<QString> executableURL(const QStringList& candidates);

// Arguments of cwebp. `quality` is brought into 0..1.
QStringList arguments(double quality, const QString& input, const QString& output);

// Waits for cwebp. Nothing on any failure. The temporary folder is always removed.
std::optional<QByteArray> convert(const QByteArray& pngData, double quality);

}    // namespace WebPEncoder
