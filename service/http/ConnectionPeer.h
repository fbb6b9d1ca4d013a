#pragma once

#include <QString>

// The program at the other end of a connection, as far as the system knows it.
struct ConnectionPeer {
    // "user 1000" for a program of this machine, "loopback" when its user is unknown, else the
    // address. Limits per source are counted by it; the address alone would not do, since one user
    // has many addresses on loopback.
    QString source;
    bool isOwnUser = false;    // runs on this machine, as the user that the service runs as
};

// Describes the other end of the connected TCP `socket`. `isOwnUser` is never guessed: it stays
// false when the system does not know the owner.
ConnectionPeer peerOf(int socket);
