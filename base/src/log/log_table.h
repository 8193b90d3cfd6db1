// The rows of the logging control's two tables, and the gate that call sites ask first.
#pragma once

#include "base/src/log/log_it.h"
#include "base/src/log/log_level.h"

#include <array>
#include <atomic>

namespace rkb {

// Stands in a place whose sink was taken out, until the default sink takes that place. Drops lines.
[[nodiscard]] log_it* vacant_sink();

// Where the lines of one level of one module go. The sinks are atomic because setting a sink for
// all modules takes no lock.
struct log_slot_t {
    uint32_t flags = 0;
    std::atomic<log_it*> primary = nullptr;   // used when flags has log_to_primary
    std::atomic<log_it*> secondary = nullptr; // used when flags has log_to_secondary

    void clear();
    void set(uint32_t sink_flags, log_it* primary_sink, log_it* secondary_sink);

    // Stores into the primary place when `sink_flags` has log_to_primary, else into the secondary
    // one when it has log_to_secondary, else nowhere.
    void store(log_it* sink, uint32_t sink_flags);

    [[nodiscard]] bool holds(const log_it* sink) const;

    // Puts `to` into the places that hold `from`. Returns whether there was one.
    bool replace(log_it* from, log_it* to);
};

// Names are atomic because a call site reads them without the lock. They live as long as the
// control.
struct log_module_t {
    uint32_t id = 0; // the module counts as registered while this is its own index
    std::atomic<const char*> name = "N/A";
    uint32_t max_level = log_debug;
    std::array<log_slot_t, log_level_count> slots;

    void reset(const char* placeholder);
};

struct log_level_entry_t {
    uint32_t number = 0;
    std::atomic<const char*> name = "N/A";
};

// For each module the number of its levels that pass now: those below this number do. The logging
// control keeps it up to date. Before the control is created it holds what creating it would give:
// module 0 counts as registered, up to DEBUG. After release() and at exit no level passes.
extern std::array<std::atomic<uint8_t>, log_module_count> log_passing_levels;

// Whether a line can be enabled at all. One load, a compare and a branch where `module_id` is a
// constant. Any thread, at any time.
[[nodiscard]] inline bool log_may_pass(uint32_t module_id, uint32_t level)
{
    return module_id < log_module_count
        && level < log_passing_levels[module_id].load(std::memory_order_relaxed);
}

} // namespace rkb
