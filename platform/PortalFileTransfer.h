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

// The key in dragged data; empty if there is none.
QByteArray portalTransferKey(const QMimeData& data);

// The files of the transfer. Nothing if the desktop has no such portal or refuses.
QCoro::Task<std::optional<QList<QUrl>>>
portalFiles(QByteArray key, QDBusConnection bus = QDBusConnection::sessionBus());
