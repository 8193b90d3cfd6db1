#include "base/src/log/logger_file_default.h"

#include "base/src/log/log_control.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <new>

namespace rkb {

namespace {

// Constant-initialised and never destroyed, for whoever asks before main or after it.
constinit std::atomic<logger_file*> current{nullptr};
constinit std::atomic<bool> closed{false}; // no sink is created any more

struct guard_t : no_copy {
    guard_t() = default;
    ~guard_t()
    {
        create_no_default_file_sink();
        destroy_default_file_sink();
    }

    thread_mutex_recursive mutex;
};

guard_t& guard()
{
    static guard_t it;
    return it;
}

// Locks the control's tables if there is a control: no line is being written meanwhile. Always
// taken before the sink's own mutex, as binding the default sinks does.
class tables_lock_t : no_copy {
public:
    tables_lock_t()
        : m_control(log_control_t::instance())
    {
        if (m_control)
            m_control->mutex().lock();
    }
    ~tables_lock_t()
    {
        if (m_control)
            m_control->mutex().unlock();
    }
    log_control_t* control() const { return m_control; }

private:
    log_control_t* m_control;
};

} // namespace

logger_file* default_file_sink()
{
    return create_default_file_sink(nullptr, nullptr, "log", default_max_size, default_max_index);
}

logger_file* existing_default_file_sink()
{
    return current.load(std::memory_order_acquire);
}

logger_file* create_default_file_sink(const char* directory, const char* base_name,
    const char* extension, uint32_t max_size, uint32_t max_index)
{
    logger_file* sink = existing_default_file_sink();
    if (sink || closed.load(std::memory_order_acquire))
        return sink;
    const std::lock_guard lock(guard().mutex);
    sink = current.load(std::memory_order_relaxed);
    if (sink)
        return sink;
    try {
        sink = new logger_file(directory, base_name, extension, max_size, max_index);
    } catch (const std::bad_alloc&) {
        return nullptr; // a log call must not throw
    }
    current.store(sink, std::memory_order_release);
    return sink;
}

uint32_t configure_default_file_sink(uint32_t max_size, uint32_t max_index)
{
    const tables_lock_t tables;
    logger_file* const sink = default_file_sink();
    return sink ? sink->configure(max_size, max_index) : log_sink_failed;
}

void destroy_default_file_sink()
{
    const tables_lock_t tables;
    const std::lock_guard lock(guard().mutex);
    const std::unique_ptr<logger_file> sink(current.exchange(nullptr, std::memory_order_acq_rel));
    if (sink && tables.control())
        tables.control()->detach(sink.get());
}

void prepare_default_file_sink()
{
    guard();
}

void create_no_default_file_sink()
{
    closed.store(true, std::memory_order_release);
}

} // namespace rkb
