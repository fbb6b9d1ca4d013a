#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

// WebP through the external program cwebp. There is no other encoder: without it callers fall back
// themselves.
namespace WebPEncoder {

// The first executable of the places where cwebp is installed.
std::optional<QString> executableURL();
std::optional<QString> executableURL(const QStringList& candidates);

// Its arguments; `quality` 0..1, anything beyond is brought to the nearest bound.
QStringList arguments(double quality, const QString& input, const QString& output);

// Waits for the program. Nothing on any failure; its working folder is removed on every way out.
std::optional<QByteArray> convert(const QByteArray& pngData, double quality);

}    // namespace WebPEncoder
