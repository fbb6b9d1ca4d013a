#pragma once

#include <QString>

class QLocalSocket;

// Local sockets by which programs of one user meet, out of the reach of the machine's other users.

// An absolute path in a folder that is ours alone: the runtime folder of the user, else one that is
// made in `dataFolder`, which exists. Empty when neither will do, or the path is too long for a
// socket.
QString privateSocketPath(const QString& name, const QString& dataFolder);

// Whether a program of our own user listens at the other end of a connected socket.
bool leadsToOwnUser(const QLocalSocket& socket);
