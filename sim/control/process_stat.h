// What /proc says about a process.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>

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

// The content of a file; what could be read of it if the process ends meanwhile. Does not throw.
[[nodiscard]] std::string contentOf(const std::string& path);

} // namespace sim
