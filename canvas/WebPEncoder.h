#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

// Encodes WebP with the external program cwebp, which may not be installed.
namespace WebPEncoder {

// The path of cwebp: the first of `candidates` (by default, the usual places) that is an executable
// file.
std::optional<QString> executableURL();
std::optional<QString> executableURL(const QStringList& candidates);

// Command-line arguments for cwebp. `quality` is clamped to 0..1; `input` and `output` are paths.
QStringList arguments(double quality, const QString& input, const QString& output);

// Runs cwebp on files in a temporary folder, which is always removed, and waits for it. Nothing if
// cwebp is missing or fails.
std::optional<QByteArray> convert(const QByteArray& pngData, double quality);

}    // namespace WebPEncoder
