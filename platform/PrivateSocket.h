#pragma once

#include <QString>

class QLocalSocket;

// Functions for local sockets between programs of one user, which other users cannot reach.

// An absolute path for a socket `name` in a folder that only this user can enter: the user's
// runtime folder or, failing that, the folder "run" in `dataFolder`, which must exist. Empty if
// both are unsuitable or the path is too long for a socket.
QString privateSocketPath(const QString& name, const QString& dataFolder);

// Whether the program at the other end of a connected socket belongs to this user.
bool leadsToOwnUser(const QLocalSocket& socket);
