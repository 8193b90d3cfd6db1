// One run of a program with simulated devices.
#pragma once

#include "sim/profile/profiles.h"

#include <span>

namespace sim {

// Plugs in a device for each profile, runs `command` (as for execvp()) with them and executes the
// commands on standard input until the program ends. Returns the program's exit status, or 128 +
// signal if a signal ended it. SIGINT, SIGQUIT, SIGTERM and SIGHUP to this process also end the
// program; then 128 + signal is returned. Returns 127 if there is no such program, 126 if it cannot
// be run. Throws std::runtime_error.
//
// To be called once, before the process has other threads: blocks those signals, ignores SIGPIPE
// and resets SIGCHLD, and does not undo this.
int runSession(std::span<const Profile* const> profiles, char* const* command);

} // namespace sim
