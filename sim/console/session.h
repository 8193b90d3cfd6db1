// One run of a program with simulated devices.
#pragma once

#include "report/format/recording.h"
#include "sim/bench/replay.h"
#include "sim/profile/profile.h"

namespace sim {

struct ReplayedDevice {
    std::vector<report::RecordedReport> reports; // of the first device
    ReplayOptions options;
};

struct SessionOptions {
    std::vector<Profile> profiles;    // one device each, at least one
    std::vector<std::string> program; // with its arguments
    bool programTakesInput = false;   // instead of commands
    std::optional<ReplayedDevice> replay = {};
};

// Plugs in a device for each profile, runs the program with them and executes commands until the
// program ends. Returns the program's exit status, or 128 + signal if a signal ended it. SIGINT,
// SIGQUIT, SIGTERM and SIGHUP to this process also end the program; then 128 + signal is returned.
// Returns 0 after the command `quit`, 1 if a replay differs from its recording, or if standard
// output cannot be written and the status would be 0, 127 if there is no such program, 126 if it
// cannot be run. Throws std::runtime_error.
//
// To be called once, before the process has other threads: changes what some signals do, and
// TMPDIR, and does not undo this.
int runSession(const SessionOptions& options);

} // namespace sim
