#pragma once

#include <QString>

class QLocalSocket;

// Local sockets by which programs of one user meet, out of reach of the machine's other users.

// An absolute path for a socket `name` in a folder that only this user can enter: the user's
// runtime folder, else one made in `dataFolder`, which must exist. Empty when neither will do, or
// the path is too long for a socket.
QString privateSocketPath(const QString& name, const QString& dataFolder);

// Whether the program that listens at the other end of a connected socket is this user's.
bool leadsToOwnUser(const QLocalSocket& socket);
