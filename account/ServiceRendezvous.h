#pragma once

#include "platform/PrivateSocket.h"

#include <QCryptographicHash>
#include <QDir>
#include <QString>

// Path of the local socket at which programs find the local service of `dataFolder`. The service
// sends one line, "http://127.0.0.1:PORT\n", to each connection. A service that was started with
// --until-unused runs as long as at least one connection is open.
//
// The folder must exist, or two spellings of its path would give different sockets. Empty if there
// is no folder for a socket that only this user can enter.
inline QString serviceSocketPath(const QString& dataFolder)
{
    const QDir folder(dataFolder);
    const QString place = folder.exists() ? folder.canonicalPath() : folder.absolutePath();
    const QByteArray digest =
        QCryptographicHash::hash(place.toUtf8(), QCryptographicHash::Blake2b_256);
    return privateSocketPath(
        QStringLiteral("moltiva-service-") + QString::fromLatin1(digest.toHex().first(16)), place);
}
