// One run of a program with simulated devices.
#pragma once

#include "sim/device/profiles.h"

#include <span>

namespace sim {

// Plugs in a device per profile, runs `command` (as for execvp) with them,
// obeys standard input until the program ends. Returns its exit status, or 128 +
// signal if one ended it, or us (SIGINT, SIGTERM, SIGHUP), which ends the
// program first; 127 if there is no such program, 126 if it cannot be run.
// Blocks those signals for good, and ignores SIGPIPE. Throws
// std::runtime_error.
int runSession(std::span<const Profile* const> profiles, char* const* command);

} // namespace sim
