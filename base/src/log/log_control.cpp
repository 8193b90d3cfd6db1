#include "base/src/log/log_control.h"

#include "base/src/auxi/log_stream.h"
#include "base/src/util/local_time.h"
#include "base/src/util/never_destroyed.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <pthread.h>

namespace rkb {

namespace {

constexpr uint8_t gate_off = 255;
constexpr uint8_t gate_initial = 32;
constexpr const char* unnamed = "N/A";
constexpr const char* unregistered = "NN/AA"; // deliberately not `unnamed`
constexpr std::array<const char*, 6> level_names{
    "FATAL", "ERROR", "WARNING", "INFO", "DEBUG", "FUNC"};

// The one control. None of these objects is destroyed, because lines may be logged before main and
// after it. The mutex guards creation and destruction.
enum class stage_t { none, creating, alive, ended }; // ended: by release() or the exit
constinit std::atomic<log_control_t*> the_control{nullptr};
constinit std::atomic<stage_t> the_stage{stage_t::none};
constinit log_control_t* left_at_exit = nullptr; // so that leak checkers find it

thread_mutex_recursive& the_mutex()
{
    static never_destroyed_t<thread_mutex_recursive> it;
    return it.value;
}

bool is_module(uint32_t module_id)
{
    return module_id < log_module_count;
}

bool is_level(uint32_t level)
{
    return level < log_level_count;
}

void close_gate()
{
    for (std::atomic<uint8_t>& levels : log_passing_levels)
        levels.store(0, std::memory_order_relaxed);
}

template <typename modules_t, typename action_t>
void for_each_slot(modules_t& modules, const action_t& action)
{
    for (auto& module : modules)
        for (auto& slot : module.slots)
            action(slot);
}

uint32_t write_to(log_it& sink, uint32_t module_id, uint32_t level, const char* data, size_t length)
{
    try {
        return sink.write(module_id, level, data, length);
    } catch (...) {
        return log_sink_failed;
    }
}

} // namespace

// While a process forks, no other thread holds any of the locks that a log call takes.
struct log_control_t::process_hooks_t : no_copy {
    process_hooks_t()
    {
        lock_all(); // creates the mutexes before main
        unlock_all();
        pthread_atfork(lock_all, unlock_all, reset_all_in_child);
    }
    ~process_hooks_t()
    {
        {
            const std::lock_guard lock(the_mutex());
            left_at_exit = the_control.exchange(nullptr, std::memory_order_acq_rel);
            the_stage.store(stage_t::ended, std::memory_order_release);
        }
        close_gate(); // first, so that logging threads do not delay close_at_exit()
        if (left_at_exit)
            left_at_exit->close_at_exit();
    }

    // In the order in which log calls take them.
    static void lock_all()
    {
        the_mutex().lock();
        if (log_control_t* control = the_control.load(std::memory_order_relaxed))
            control->m_mutex.lock();
        log_default_sink.mutex().lock();
        local_time_mutex().lock();
    }
    static void unlock_all()
    {
        local_time_mutex().unlock();
        log_default_sink.mutex().unlock();
        if (log_control_t* control = the_control.load(std::memory_order_relaxed))
            control->m_mutex.unlock();
        the_mutex().unlock();
    }
    static void reset_all_in_child()
    {
        local_time_mutex().reset_in_child();
        log_default_sink.mutex().reset_in_child();
        if (log_control_t* control = the_control.load(std::memory_order_relaxed))
            control->m_mutex.reset_in_child();
        the_mutex().reset_in_child();
    }
};

// If a static object logs in its constructor, that call constructs the hooks before the object, so
// they are destroyed after it and its destructor can log, too. Otherwise the hooks are installed
// before main.
bool log_control_t::install_process_hooks()
{
    static const process_hooks_t hooks;
    return true;
}

const bool log_control_t::s_has_process_hooks = install_process_hooks();

log_control_t* log_control_t::instance()
{
    log_control_t* control = the_control.load(std::memory_order_acquire);
    return control ? control : create();
}

log_control_t* log_control_t::create()
{
    if (the_stage.load(std::memory_order_acquire) == stage_t::ended)
        return nullptr;
    install_process_hooks();
    const std::lock_guard lock(the_mutex());
    // Not `none`: another thread has created it, or the constructor has called this.
    if (the_stage.load(std::memory_order_relaxed) != stage_t::none)
        return the_control.load(std::memory_order_relaxed);
    the_stage.store(stage_t::creating, std::memory_order_relaxed);
    log_control_t* control = nullptr;
    try {
        control = new log_control_t;
    } catch (const std::bad_alloc&) { // a log call must not throw
    }
    the_control.store(control, std::memory_order_release);
    the_stage.store(control ? stage_t::alive : stage_t::none, std::memory_order_relaxed);
    return control;
}

void log_control_t::release()
{
    if (log_control_t* control = the_control.load(std::memory_order_acquire))
        control->log_own_line("log_control_t::release()\n");
    const std::lock_guard lock(the_mutex());
    the_stage.store(stage_t::ended, std::memory_order_release);
    delete the_control.exchange(nullptr, std::memory_order_acq_rel);
    close_gate();
}

log_control_t::log_control_t()
    : m_gate(gate_initial)
    , m_modules(log_module_count)
{
    for (uint32_t level = 0; level < log_level_count; ++level) {
        m_levels[level].number = level;
        if (level < level_names.size())
            m_levels[level].name = level_names[level];
    }
}

log_control_t::~log_control_t()
{
    log_own_line("log_control_t::~log_control_t()\n");
}

// Logs the lines of release(), then removes all sinks. A thread that has passed the gate before
// that still finds the control, but no sink.
void log_control_t::close_at_exit()
{
    const std::lock_guard lock(m_mutex);
    m_creates_default_sink = false; // no log file is begun at exit
    forget_sinks();
    log_own_line("log_control_t::release()\n");
    log_own_line("log_control_t::~log_control_t()\n");
    forget_sinks();
    m_binding.store(binding_t::complete, std::memory_order_release);
}

void log_control_t::log_own_line(const char* text)
{
    const std::lock_guard lock(m_mutex);
    if (log_info >= passing_levels(log_module_util))
        return;
    const char* module_name = nullptr;
    const char* level_name = nullptr;
    prepare_line(log_module_util, log_info, module_name, level_name);
    char buffer[log_line_size];
    log_stream_t stream(buffer, sizeof buffer, level_name, module_name);
    stream << text;
    write(log_module_util, log_info, stream.text(), stream.length());
}

uint32_t log_control_t::register_module(
    uint32_t module_id, const char* name, uint32_t max_level, log_it* sink, uint32_t sink_flags)
{
    if (!is_module(module_id) || !is_level(max_level))
        return log_bad_argument;
    const std::lock_guard lock(m_mutex);
    log_module_t& module = m_modules[module_id];
    module.id = module_id;
    module.name.store(stored_name(name), std::memory_order_release);
    module.max_level = max_level;
    for (log_slot_t& slot : module.slots)
        slot.flags = sink_flags;
    for (uint32_t level = 0; level <= max_level; ++level)
        module.slots[level].store(sink, sink_flags);
    update_gate(module_id);
    return 0;
}

uint32_t log_control_t::unregister_module(uint32_t module_id)
{
    if (!is_module(module_id))
        return log_bad_argument;
    const std::lock_guard lock(m_mutex);
    if (!is_registered(module_id))
        return log_not_registered;
    m_modules[module_id].reset(unregistered);
    update_gate(module_id);
    return 0;
}

uint32_t log_control_t::set_sink(uint32_t module_id, uint32_t level, log_it* sink)
{
    if (!is_module(module_id) || !is_level(level))
        return log_bad_argument;
    const std::lock_guard lock(m_mutex);
    if (!is_registered(module_id))
        return log_not_registered;
    m_modules[module_id].slots[level].store(sink, log_to_primary);
    return 0;
}

uint32_t log_control_t::set_flags(uint32_t module_id, uint32_t sink_flags)
{
    if (!is_module(module_id))
        return log_bad_argument;
    const std::lock_guard lock(m_mutex);
    if (!is_registered(module_id))
        return log_not_registered;
    for (log_slot_t& slot : m_modules[module_id].slots)
        slot.flags = sink_flags;
    return 0;
}

uint32_t log_control_t::set_sink_everywhere(log_it* sink, uint32_t sink_flags)
{
    for_each_slot(m_modules, [&](log_slot_t& slot) { slot.store(sink, sink_flags); });
    return 0;
}

uint32_t log_control_t::set_level_name(uint32_t level, const char* name)
{
    if (!is_level(level))
        return log_bad_value;
    const std::lock_guard lock(m_mutex);
    m_levels[level].name.store(stored_name(name), std::memory_order_release);
    return 0;
}

const char* log_control_t::level_name(uint32_t level) const
{
    if (!is_level(level) || m_levels[level].number != level)
        return nullptr;
    return m_levels[level].name.load(std::memory_order_acquire);
}

void log_control_t::set_gate(uint32_t max_level)
{
    const std::lock_guard lock(m_mutex);
    m_gate.store(static_cast<uint8_t>(max_level), std::memory_order_relaxed);
    for (uint32_t module_id = 0; module_id < log_module_count; ++module_id)
        update_gate(module_id);
}

int log_control_t::gate() const
{
    const uint8_t gate = m_gate.load(std::memory_order_relaxed);
    return gate == gate_off ? -1 : gate;
}

bool log_control_t::is_enabled(
    uint32_t module_id, uint32_t level, const char*& module_name, const char*& level_name)
{
    if (!log_may_pass(module_id, level))
        return false;
    prepare_line(module_id, level, module_name, level_name);
    return true;
}

void log_control_t::prepare_line(
    uint32_t module_id, uint32_t level, const char*& module_name, const char*& level_name)
{
    assert(is_module(module_id) && is_level(level));
    if (m_binding.load(std::memory_order_acquire) != binding_t::complete)
        attach();
    module_name = m_modules[module_id].name.load(std::memory_order_acquire);
    level_name = m_levels[level].name.load(std::memory_order_acquire);
}

uint32_t log_control_t::attach()
{
    const std::lock_guard lock(m_mutex);
    const binding_t binding = m_binding.load(std::memory_order_relaxed);
    if (binding == binding_t::complete)
        return log_already_attached;
    if (binding == binding_t::none) {
        const uint32_t flags = default_flags();
        log_it* const primary = flags & log_to_primary ? custom_sink() : nullptr;
        log_it* const secondary = flags & log_to_secondary ? vacant_sink() : nullptr;
        for_each_slot(m_modules, [&](log_slot_t& slot) { slot.set(flags, primary, secondary); });
    }
    m_binding.store(fill_vacant_places() ? binding_t::complete : binding_t::with_vacant_places,
        std::memory_order_release);
    return 0;
}

// Returns whether no place is vacant any more.
bool log_control_t::fill_vacant_places()
{
    if (!has_vacant_place())
        return true;
    log_it* const sink
        = m_creates_default_sink ? log_default_sink.get() : log_default_sink.existing();
    if (!sink)
        return false;
    for_each_slot(m_modules, [&](log_slot_t& slot) { slot.replace(vacant_sink(), sink); });
    return true;
}

bool log_control_t::has_vacant_place() const
{
    bool found = false;
    for_each_slot(
        m_modules, [&](const log_slot_t& slot) { found = found || slot.holds(vacant_sink()); });
    return found;
}

void log_control_t::detach(log_it* sink)
{
    const std::lock_guard lock(m_mutex);
    bool found = false;
    for_each_slot(
        m_modules, [&](log_slot_t& slot) { found = slot.replace(sink, vacant_sink()) || found; });
    if (found && m_binding.load(std::memory_order_relaxed) == binding_t::complete)
        m_binding.store(binding_t::with_vacant_places, std::memory_order_release);
}

void log_control_t::forget_sinks()
{
    const std::lock_guard lock(m_mutex);
    set_custom_sink(nullptr);
    for_each_slot(m_modules, [](log_slot_t& slot) { slot.set(slot.flags, nullptr, nullptr); });
    m_binding.store(binding_t::none, std::memory_order_release);
}

uint32_t log_control_t::write(
    uint32_t module_id, uint32_t level, const char* data, size_t length, log_it* override_sink)
{
    if (!is_module(module_id) || !is_level(level))
        return log_bad_argument;
    const std::lock_guard lock(m_mutex);
    if (!is_registered(module_id))
        return log_not_registered;
    const log_module_t& module = m_modules[module_id];
    if (level > module.max_level)
        return 0;
    if (override_sink)
        return write_to(*override_sink, module_id, level, data, length);
    const log_slot_t& slot = module.slots[level];
    log_it* const primary = slot.primary.load(std::memory_order_acquire);
    log_it* const secondary = slot.secondary.load(std::memory_order_acquire);
    if (primary && slot.flags & log_to_primary)
        write_to(*primary, module_id, level, data, length);
    if (secondary && secondary != primary && slot.flags & log_to_secondary)
        write_to(*secondary, module_id, level, data, length);
    return 0;
}

const char* log_control_t::stored_name(const char* name)
{
    return name ? m_names.emplace(name).first->c_str() : unnamed;
}

uint32_t log_control_t::passing_levels(uint32_t module_id) const
{
    const uint32_t gate = m_gate.load(std::memory_order_relaxed);
    if (gate == gate_off || !is_registered(module_id))
        return 0;
    return std::min(gate, m_modules[module_id].max_level) + 1;
}

void log_control_t::update_gate(uint32_t module_id)
{
    log_passing_levels[module_id].store(
        static_cast<uint8_t>(passing_levels(module_id)), std::memory_order_relaxed);
}

} // namespace rkb
