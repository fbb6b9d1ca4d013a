#pragma once

#include <QByteArray>
#include <QCoroTask>
#include <QDBusConnection>
#include <QList>
#include <QUrl>

#include <optional>

class QMimeData;

// Files that a program in a sandbox hands over by drag and drop: the portal of the desktop makes
// them readable and tells their paths in exchange for a key.

// Whether dragged data holds a key. Unlike portalTransferKey(), does not ask the other program for
// it, which may give it only when the data is dropped.
bool offersPortalFiles(const QMimeData& data);

// The key in dropped data; empty if there is none.
QByteArray portalTransferKey(const QMimeData& data);

// The files of the transfer. Nothing if the desktop has no such portal or refuses.
QCoro::Task<std::optional<QList<QUrl>>>
portalFiles(QByteArray key, QDBusConnection bus = QDBusConnection::sessionBus());
