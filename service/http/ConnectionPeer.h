#pragma once

#include <QString>

// The program at the other end of a connection, as far as the system knows it.
struct ConnectionPeer {
    // "user 1000" for a program on this machine, "loopback" if its user is unknown, else the IP
    // address. Limits count per source: with limits per address, a user could evade them by
    // connecting from many loopback addresses.
    QString source;
    bool isOwnUser = false;    // runs on this machine, as the user that the service runs as
};

// Describes the other end of the connected TCP `socket`. `isOwnUser` is never guessed: it stays
// false when the system does not know the owner.
ConnectionPeer peerOf(int socket);
