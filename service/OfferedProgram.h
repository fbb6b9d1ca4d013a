#pragma once

#include <QString>

// The newest version of Moltiva for Linux and where it can be downloaded. Both may be empty.
struct OfferedProgram {
    QString version, download;
};

// Reads MOLTIVA_LATEST_LINUX_VERSION and MOLTIVA_LINUX_DOWNLOAD_URL; for each that is empty, the
// group [updates] of moltiva.conf.
OfferedProgram configuredProgram();
