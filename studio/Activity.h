#pragma once

#include "model/PublicationItem.h"

#include <functional>
#include <map>
#include <optional>

// Something that takes longer than a moment, with all that the window needs to show it, to stop it
// and to close around it. A value.
struct Activity {
    // In rising order of importance, for Activities::foremost().
    enum class Kind { account, restoring, importing, exporting };
    static constexpr qsizetype unknown = -1;

    Kind kind = Kind::account;
    qsizetype done = 0, total = unknown;    // images, or another unit of the work
    std::function<void()> stop = {};        // requests its end; empty: it cannot be stopped
    bool delaysClosing = false;        // the window stops it and waits for its end before closing
    PublicationItems incoming = {};    // of an import: the photos accepted so far

    // From 0 to 1; empty while the total is unknown.
    std::optional<double> fraction() const;
};

// What is under way, at most one activity of each kind.
class Activities {
public:
    void set(const Activity& activity) { m_running[activity.kind] = activity; }
    void end(Activity::Kind kind) { m_running.erase(kind); }

    // Null when no activity of this kind is under way.
    const Activity* find(Activity::Kind kind) const;
    // The activity that the status line shows and stops; null when none is under way.
    const Activity* foremost() const;
    // An activity that must end before the window closes; null when none must.
    const Activity* delayingClosing() const;
    void stop(Activity::Kind kind) const;

private:
    std::map<Activity::Kind, Activity> m_running;
};
