#pragma once

#include "model/PublicationItem.h"

#include <functional>
#include <map>
#include <optional>

// Something that takes longer than a moment, with all that the window needs to show it, to stop it
// and to close around it. A value.
struct Activity {
    // Of several at once the last of these is the foremost.
    enum class Kind { account, restoring, importing, exporting };
    static constexpr qsizetype unknown = -1;

    Kind kind = Kind::account;
    qsizetype done = 0, total = unknown;    // images, or whatever it counts
    std::function<void()> stop = {};        // asks for its end; empty: it cannot be stopped
    bool delaysClosing = false;    // it is stopped before the window closes, and its end awaited
    PublicationItems incoming = {};    // of an import: what will replace the batch, so far

    // From 0 to 1; nothing where nobody knows how much there is to do.
    std::optional<double> fraction() const;
};

// What is under way, at most one activity of each kind.
class Activities {
public:
    void set(const Activity& activity) { m_running[activity.kind] = activity; }
    void end(Activity::Kind kind) { m_running.erase(kind); }

    // Null where there is none.
    const Activity* find(Activity::Kind kind) const;
    // The one that is shown and that a request to stop means; null where nothing is under way.
    const Activity* foremost() const;
    // One that has to end before the window closes; null for none.
    const Activity* delayingClosing() const;
    void stop(Activity::Kind kind) const;

private:
    std::map<Activity::Kind, Activity> m_running;
};
