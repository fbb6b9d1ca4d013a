#pragma once

#include "model/PublicationItem.h"

#include <QElapsedTimer>

#include <functional>
#include <map>
#include <optional>

// A long operation, with all that the window needs to show it, to stop it and to wait for its end.
struct Activity {
    // In ascending order of importance; see Activities::foremost().
    enum class Kind { account, restoring, importing, generating, exporting, publishing };
    static constexpr qsizetype unknown = -1;

    Kind kind = Kind::account;
    qsizetype done = 0, total = unknown;    // amount of work, in images or another unit
    std::function<void()> stop = {};        // asks the activity to end; empty: it cannot be stopped
    bool delaysClosing = false;        // before closing, the window stops it and waits for its end
    PublicationItems incoming = {};    // items that an import has made so far

    // The share of the work that is done, from 0 to 1; empty while the total is unknown.
    std::optional<double> fraction() const;
};

// The activities under way, at most one of each kind.
class Activities {
public:
    void set(const Activity& activity);
    void end(Activity::Kind kind);

    // Null when no activity of this kind is under way.
    const Activity* find(Activity::Kind kind) const;
    // The most important activity, which the status line shows and can stop; null when none is
    // under way.
    const Activity* foremost() const;
    // An activity that must end before the window closes; null if there is none.
    const Activity* delayingClosing() const;
    void stop(Activity::Kind kind) const;

private:
    std::map<Activity::Kind, Activity> m_running;
    std::map<Activity::Kind, QElapsedTimer> m_began;    // for the log
};
