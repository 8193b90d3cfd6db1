// The steps of a meeting after which the device is watched, and what happened then.
#pragma once

#include "tools/ctl/meeting/journal.h"

#include <vector>

namespace ctl {

using Entries = std::vector<Entry>;

enum class Step {
    kOpen,
    kRing,
    kPickUp, // a call that has just begun to ring
    kMute,
    kUnmute,
    kEnd, // of a call: the device is closed and opened again
};

struct WatchedStep {
    bool entered = true;   // false: an event of the device changed the meeting before the step
    Entries entering = {}; // while the meeting was brought into the state before the step
    Entries entries = {};  // from the step on, in the time for silence
};

[[nodiscard]] Entries ofKind(const Entries& entries, Entry::Kind kind);

[[nodiscard]] std::vector<Entry::Kind> eventsIn(const Entries& entries);

} // namespace ctl
