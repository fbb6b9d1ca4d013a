#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// What one check of the self-test found.
struct SelfTestResult {
    QString check;      // its stored name
    QString title;      // what was checked, for the user
    QString problem;    // Spanish sentence; empty: nothing is missing
};

// Checks that everything the program needs of this machine is there and works: the decoders of
// photos, fonts, the database, encrypted connections, programs, the local service. Works in a
// temporary folder and with a server of its own. Waits, for several seconds if the service hangs.
QList<SelfTestResult> selfTest();

// `moltiva --self-test`: prints what selfTest() finds and returns the exit status.
int runSelfTest(const QStringList& arguments);
