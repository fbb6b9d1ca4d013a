#pragma once

#include "model/CopyGenerationMode.h"

#include <QStringList>

// How a run that generates copy ended, for the status line.
struct CopyOutcome {
    enum class State {
        done,
        cancelled,
        refused,    // nothing was started
        failing,    // stopped by failures that the next image would meet too
    };
    // What the user can do about `reason`.
    enum class Remedy { none, purchase, signIn };

    State state = State::done;
    CopyGenerationMode mode = CopyGenerationMode::local;
    int images = 0;                      // that the run was for
    int written = 0;                     // images with new texts
    int unanswered = 0;                  // images whose texts could not be generated
    int leftOut = 0;                     // images that a failing run did not reach
    bool isThreeInRow = false;           // three failures in a row stopped the run
    int replaced = 0;                    // the user's own texts that were replaced
    int kept = 0;                        // results that an edit during the run kept out
    qint64 cost = 0;                     // credits that were charged
    QString slot = {};                   // name of the one text that was asked for; empty: all
    QString reason = {};                 // sentence of the refusal or of all failures; may be empty
    QStringList notes = {};              // sentences about images that were gone
    QStringList unansweredNames = {};    // of the images' files
    Remedy remedy = Remedy::none;

    QString sentence() const;
    bool operator==(const CopyOutcome&) const = default;
};
