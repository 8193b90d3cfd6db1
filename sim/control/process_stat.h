// What /proc says about a process.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>

namespace sim {

struct ProcessStat {
    pid_t parent = 0;
    pid_t group = 0;
    pid_t session = 0;
    bool ended = false; // but its parent has not waited for it
    uint64_t start = 0; // clock ticks from the start of the system
};

// No value if there is no such process.
[[nodiscard]] std::optional<ProcessStat> statOf(pid_t pid);

} // namespace sim
