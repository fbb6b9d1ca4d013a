#pragma once

// Exit statuses of all commands. Each explains its own in its help; see printCommandHelp().
enum ExitStatus {
    exitDone = 0,
    exitSomeFailed = 1,
    exitWrongUse = 2,
    exitNotSignedIn = 3,
    exitTooFewCredits = 4,
    exitNoNetwork = 5,
    exitUnknown = 6,    // whether a post was published
    exitInterrupted = 130,
};
