// The processes that a bench has started.
#pragma once

#include "sim/control/process_group.h"

#include <chrono>
#include <filesystem>
#include <optional>

namespace sim {

// The environment variable that names the control socket to the program and its children.
inline constexpr const char* kSocketVariable = "KELPROBE_SIM";

// Which processes are those of a bench. A process is one if it has the bench's socket in its
// environment, is in the program's process group, or descends from the calling process. The last is
// only for a bench that ends its own processes, which must not be orphaned then: see
// PR_SET_CHILD_SUBREAPER.
struct BenchProcesses {
    std::filesystem::path socket;
    std::optional<ProcessGroup> group = {};
    bool descendants = false;
};

// Ends each of these processes that is not the calling process or an ancestor of it: with SIGTERM
// and, if it has not ended after `grace`, with SIGKILL; without grace with SIGKILL at once. Returns
// when they have ended, or two seconds after SIGKILL if one has not. Reaps all children of the
// calling process that have ended.
void endProcesses(const BenchProcesses& processes, std::chrono::milliseconds grace);

} // namespace sim
