// A process group that is recognized after its first process has ended.
#pragma once

#include "sim/control/process_stat.h"

#include <filesystem>

namespace sim {

class ProcessGroup {
public:
    // That of a process that leads its group. No value if there is no such process.
    [[nodiscard]] static std::optional<ProcessGroup> ledBy(pid_t leader);

    // No value if the file cannot be read, or if its group was one before the latest start of the
    // system, or if another group has that number now.
    [[nodiscard]] static std::optional<ProcessGroup> load(const std::filesystem::path& file);
    void save(const std::filesystem::path& file) const; // failure is ignored

    [[nodiscard]] bool contains(const ProcessStat& process) const;

private:
    ProcessStat leader_;
};

} // namespace sim
