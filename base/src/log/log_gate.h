// What a call site looks at first: whether a line can be enabled at all.
#pragma once

#include "base/src/log/log_level.h"

#include <array>
#include <atomic>

namespace rkb {

// For each module the number of its levels that pass now: those below this number do. The logging
// control keeps it up to date. Before the control is created it says what its creation would find
// (module 0 counts as registered, up to DEBUG), after its release that nothing passes.
extern std::array<std::atomic<uint8_t>, log_module_count> log_open_levels;

// One load, a compare and a branch where `module_id` is a constant. Any thread, any time.
[[nodiscard]] inline bool log_may_pass(uint32_t module_id, uint32_t level)
{
    return module_id < log_module_count
        && level < log_open_levels[module_id].load(std::memory_order_relaxed);
}

} // namespace rkb
