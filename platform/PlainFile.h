#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// The contents of a file of at most `largest` bytes. Nothing for a link, a folder, a pipe, a larger
// file or one that cannot be read.
std::optional<QByteArray> plainFile(const QString& path, qint64 largest);
