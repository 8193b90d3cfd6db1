// The rows of the logging control's two tables, and the gate that call sites check first.
#pragma once

#include "base/src/log/log_it.h"
#include "base/src/log/log_level.h"

#include <array>
#include <atomic>

namespace rkb {

// A sink that drops lines. It marks the places that wait for the default sink.
[[nodiscard]] log_it* vacant_sink();

// Where the lines of one level of one module go. The control's mutex guards the flags. The sinks
// are atomic because log_control_t::set_sink_everywhere() locks nothing; all other functions change
// them under the mutex.
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

// One entry of the module table. The control's mutex guards the id and the maximum level. The name
// is atomic because call sites read it without the mutex; its text lives as long as the control.
struct log_module_t {
    uint32_t id = 0; // the module counts as registered while this is the entry's index
    std::atomic<const char*> name = "N/A";
    uint32_t max_level = log_debug;
    std::array<log_slot_t, log_level_count> slots;

    // Unregisters the module and empties its slots.
    void reset(const char* placeholder_name);
};

// One entry of the level table. The number does not change. For the name see log_module_t.
struct log_level_entry_t {
    uint32_t number = 0;
    std::atomic<const char*> name = "N/A";
};

// For each module the number of its levels that pass now: all levels below this number do. The
// control updates it under its mutex. Before the control exists the numbers are those of a new
// control: module 0 counts as registered, up to DEBUG. After release() and at exit all are 0.
extern std::array<std::atomic<uint8_t>, log_module_count> log_passing_levels;

// Whether a line may pass. Call sites check this first. Costs one load, a comparison and a branch
// if `module_id` is a constant. Any thread, at any time.
[[nodiscard]] inline bool log_may_pass(uint32_t module_id, uint32_t level)
{
    return module_id < log_module_count
        && level < log_passing_levels[module_id].load(std::memory_order_relaxed);
}

} // namespace rkb
