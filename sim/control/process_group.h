// A process group that is recognized after its first process has ended.
#pragma once

#include "sim/control/process_stat.h"

#include <filesystem>

namespace sim {

class ProcessGroup {
public:
    // The group that this process leads. No value if there is no such process.
    [[nodiscard]] static std::optional<ProcessGroup> ledBy(pid_t leader);

    // No value if the file cannot be read, or if the group is from before the last boot, or if
    // another group has that number now.
    [[nodiscard]] static std::optional<ProcessGroup> load(const std::filesystem::path& file);
    void save(const std::filesystem::path& file) const; // failure is ignored

    [[nodiscard]] bool contains(const ProcessStat& process) const;

private:
    ProcessStat leader_;
};

} // namespace sim
