#pragma once

#include <QString>

// Who is at the other end of a connection.
struct ConnectionPeer {
    // The program's user, on this machine; else the address. What is counted by who does it is
    // counted by this: one user has many addresses on the machine's own network.
    QString source;
    bool isOwnUser = false;    // on this machine, the user that we run as
};

// Of a connected TCP socket. Whom the system does not know is nobody's program: `isOwnUser` is
// never guessed.
ConnectionPeer peerOf(int socket);
