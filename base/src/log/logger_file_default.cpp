#include "base/src/log/logger_file_default.h"

#include "base/src/log/log_control.h"
#include "base/src/util/never_destroyed.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <new>

namespace rkb {

namespace {

// Neither the pointer nor the mutex is destroyed: lines may be logged before main and while the
// process exits. The mutex guards creating and destroying the sink. It is locked after the
// control's, as attach() does.
constinit std::atomic<logger_file*> the_sink{nullptr};
thread_mutex_recursive& the_sink_mutex()
{
    static never_destroyed_t<thread_mutex_recursive> it;
    return it.value;
}

// No line is written while the tables are locked.
std::unique_lock<thread_mutex_recursive> lock_tables(log_control_t* control)
{
    return control ? std::unique_lock(control->mutex())
                   : std::unique_lock<thread_mutex_recursive>();
}

} // namespace

constinit const log_default_sink_t log_default_sink{
    []() -> log_it* { return default_file_sink(); },
    []() -> log_it* { return existing_default_file_sink(); },
    the_sink_mutex,
};

logger_file* default_file_sink()
{
    return create_default_file_sink(nullptr, nullptr, "log", default_max_size, default_max_index);
}

logger_file* existing_default_file_sink()
{
    return the_sink.load(std::memory_order_acquire);
}

logger_file* create_default_file_sink(const char* directory, const char* base_name,
    const char* extension, uint32_t max_size, uint32_t max_index)
{
    logger_file* sink = existing_default_file_sink();
    if (sink)
        return sink;
    const std::lock_guard lock(the_sink_mutex());
    sink = the_sink.load(std::memory_order_relaxed);
    if (sink)
        return sink;
    try {
        sink = new logger_file(directory, base_name, extension, max_size, max_index);
    } catch (const std::bad_alloc&) {
        return nullptr; // a log call must not throw
    }
    the_sink.store(sink, std::memory_order_release);
    return sink;
}

uint32_t configure_default_file_sink(uint32_t max_size, uint32_t max_index)
{
    const auto tables = lock_tables(log_control_t::instance());
    logger_file* const sink = default_file_sink();
    return sink ? sink->configure(max_size, max_index) : log_sink_failed;
}

void destroy_default_file_sink()
{
    log_control_t* const control = log_control_t::instance();
    const auto tables = lock_tables(control);
    const std::lock_guard lock(the_sink_mutex());
    const std::unique_ptr<logger_file> sink(the_sink.exchange(nullptr, std::memory_order_acq_rel));
    if (sink && control)
        control->detach(sink.get());
}

} // namespace rkb
