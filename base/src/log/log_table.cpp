#include "base/src/log/log_table.h"

namespace rkb {

void log_slot_t::clear()
{
    set(0, nullptr, nullptr);
}

void log_slot_t::set(uint32_t sink_flags, log_it* primary_sink, log_it* secondary_sink)
{
    flags = sink_flags;
    primary.store(primary_sink, std::memory_order_release);
    secondary.store(secondary_sink, std::memory_order_release);
}

void log_slot_t::store(log_it* sink, uint32_t sink_flags)
{
    if (sink_flags & log_to_primary)
        primary.store(sink, std::memory_order_release);
    else if (sink_flags & log_to_secondary)
        secondary.store(sink, std::memory_order_release);
}

bool log_slot_t::forget(const log_it* sink)
{
    bool found = false;
    for (std::atomic<log_it*>* place : {&primary, &secondary}) {
        if (place->load(std::memory_order_relaxed) != sink)
            continue;
        place->store(nullptr, std::memory_order_release);
        found = true;
    }
    return found;
}

void log_module_t::reset(const char* placeholder)
{
    id = 0;
    name.store(placeholder, std::memory_order_release);
    max_level = log_debug;
    for (log_slot_t& slot : slots)
        slot.clear();
}

} // namespace rkb
