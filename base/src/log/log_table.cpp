#include "base/src/log/log_table.h"

#include "base/src/util/never_destroyed.h"

namespace rkb {

namespace {

struct vacant_sink_t final : log_it {
    uint32_t write(uint32_t, uint32_t, const char*, size_t) override { return 0; }
};

constinit never_destroyed_t<vacant_sink_t> vacant;

} // namespace

constinit std::array<std::atomic<uint8_t>, log_module_count> log_passing_levels{log_debug + 1};

log_it* vacant_sink()
{
    return &vacant.value;
}

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

bool log_slot_t::holds(const log_it* sink) const
{
    return primary.load(std::memory_order_relaxed) == sink
        || secondary.load(std::memory_order_relaxed) == sink;
}

bool log_slot_t::replace(log_it* from, log_it* to)
{
    bool found = false;
    for (std::atomic<log_it*>* place : {&primary, &secondary}) {
        log_it* expected = from;
        found = place->compare_exchange_strong(expected, to, std::memory_order_acq_rel) || found;
    }
    return found;
}

void log_module_t::reset(const char* placeholder_name)
{
    id = 0;
    name.store(placeholder_name, std::memory_order_release);
    max_level = log_debug;
    for (log_slot_t& slot : slots)
        slot.clear();
}

} // namespace rkb
