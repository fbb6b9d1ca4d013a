#pragma once

#include "copygen/InstallScripts.h"
#include "copygen/LocalAIInstallation.h"

#include <QCoroTask>

struct FetchOutcome {
    int status = 0;    // an exit status: 0, 1 or one of InstallExit
    QString reason;    // for the user; empty at status 0
};

// Downloads a pinned file to `path`, through `path` + ".part". What an earlier call has stored
// there is not asked for again. Goes on after a broken connection as long as each attempt brings
// bytes. Follows redirections to https alone, on this machine also to http.
QCoro::Task<FetchOutcome> fetchPinned(PinnedFile pin, QString path);
