#pragma once

#include "platform/PrivateSocket.h"

#include <QCryptographicHash>
#include <QDir>
#include <QString>

// Where the local service of a data folder is met: a local socket that gives one line,
// "http://127.0.0.1:PORT\n", to each who connects. As long as somebody stays connected, a service
// that was started with --until-unused goes on.
//
// The folder should exist, so that every way to write it gives the same name. Empty where no socket
// of ours is safe.
inline QString serviceSocketPath(const QString& dataFolder)
{
    const QDir folder(dataFolder);
    const QString place = folder.exists() ? folder.canonicalPath() : folder.absolutePath();
    const QByteArray digest =
        QCryptographicHash::hash(place.toUtf8(), QCryptographicHash::Blake2b_256);
    return privateSocketPath(
        QStringLiteral("moltiva-service-") + QString::fromLatin1(digest.toHex().first(16)), place);
}
