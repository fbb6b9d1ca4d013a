#pragma once

#include <QString>

// What of this machine decides whether the local engine can work here.
struct Machine {
    QString processor;    // as QSysInfo names it
    qint64 memory = 0;    // bytes; 0 where the system does not tell
    qint64 free = 0;      // bytes on the disk of the installation; negative where it is unknown
    bool hasAVX2 = true;
    bool isMac = false;

    // `folder`: of the installation; it must exist.
    static Machine thisOne(const QString& folder);
};

// Why installing makes no sense, as a Spanish sentence; empty when it does. `missingBytes`: of the
// model, still to be downloaded.
QString whyNotInstallable(const Machine& machine, qint64 missingBytes);

// A Spanish warning about a processor that takes minutes for an image; mostly empty.
QString processorWarning(const Machine& machine);
