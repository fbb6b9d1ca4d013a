#pragma once

#include <QHostAddress>

struct Peer {
    QHostAddress address;
    int port = 0;
};

// Whether the other side of a connection on this machine is a program of the user that we run as.
// Always, on systems that keep no table of it; never where the table cannot be read.
bool isOwnProgram(const Peer& theirs, const Peer& ours);
