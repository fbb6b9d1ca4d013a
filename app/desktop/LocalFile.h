#pragma once

#include <QUrl>

// The address with the path alone if it is that of a file on this machine, for some programs name
// the machine in it or give a bare path. Any other address as it is.
QUrl onThisMachine(const QUrl& address);
