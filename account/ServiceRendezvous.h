#pragma once

#include <QCryptographicHash>
#include <QDir>
#include <QStandardPaths>
#include <QString>

// Where the local service of a data folder is met: a local socket that gives one line,
// "http://127.0.0.1:PORT\n", to each who connects. As long as somebody stays connected, a service
// that was started with --until-unused goes on.
//
// The folder should exist, so that every way to write it gives the same name. Short: a socket's
// path has room for 107 characters.
inline QString serviceSocketPath(const QString& dataFolder)
{
    const QDir folder(dataFolder);
    const QString place = folder.exists() ? folder.canonicalPath() : folder.absolutePath();
    const QByteArray digest =
        QCryptographicHash::hash(place.toUtf8(), QCryptographicHash::Blake2b_256);
    return QDir(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation))
        .filePath(QStringLiteral("moltiva-service-") +
                  QString::fromLatin1(digest.toHex().first(16)));
}
