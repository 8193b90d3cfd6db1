// The switchboard of the library's logging: which lines pass, and to which sinks they go.
#pragma once

#include "base/src/log/log_table.h"
#include "base/src/util/no_copy.h"
#include "base/src/util/thread_mutex.h"

#include <cassert>
#include <set>
#include <string>
#include <vector>

namespace rkb {

// How the control obtains its default sink. The unit of that sink defines the one object, constant
// and constant-initialised, so that lines can be logged before main.
struct log_default_sink_t {
    log_it* (*get)();                   // creates the sink if there is none; null when that fails
    log_it* (*existing)();              // null if there is none
    thread_mutex_recursive& (*mutex)(); // is taken after the control's
};
extern const log_default_sink_t log_default_sink;

// One per process, created by the first instance() and destroyed by release(). Call sites go
// through log.h. Every operation may be called from any thread; those that change or walk the
// tables take the control's recursive mutex, and sinks are called with it held. The exceptions are
// marked.
//
// Sinks are referred to, never owned. Names are copied.
class log_control_t : no_copy {
public:
    // Null while the control is being created (to its own constructor's callees; other threads
    // wait), after its destruction, and from the exit of the process on. Also null when there is no
    // memory for it; the next call tries again. Locks only to create.
    [[nodiscard]] static log_control_t* instance();

    // Logs its call and destroys the control. Later log calls have no effect. Other threads must
    // have stopped logging.
    //
    // At exit, if this has not been called, the control logs the same lines, to the default file
    // sink only, because other sinks may have been destroyed before. Later log calls have no effect
    // then either. The control and the default file sink stay in memory, so that threads may still
    // be logging while the process exits.
    static void release();

    // Registers a module, again if need be: its name (null: "N/A"), its least severe level, the
    // flags of all its slots, and `sink`, for the levels that pass, in the place that the flags
    // name (the primary one if both). 0, or log_bad_argument: id > 255 or maximum level > 31.
    uint32_t register_module(uint32_t module_id, const char* name, uint32_t max_level, log_it* sink,
        uint32_t sink_flags);

    // Makes a module unregistered, its slots empty. Module 0 only gets another name: its empty
    // entry already looks registered. 0, log_bad_argument or log_not_registered.
    uint32_t unregister_module(uint32_t module_id);

    // Sets the primary sink of one level. 0, log_bad_argument or log_not_registered.
    uint32_t set_sink(uint32_t module_id, uint32_t level, log_it* sink);

    // Sets the flags of all slots of a module. 0, log_bad_argument or log_not_registered.
    uint32_t set_flags(uint32_t module_id, uint32_t sink_flags);

    // Puts a sink into every slot of every module, in the place that the flags name (the primary
    // one if both); the slots' own flags stay. 0. Deliberately takes no lock: it is for set-up
    // before logging starts, and a line being written beside it goes to the old or the new sink.
    uint32_t set_sink_everywhere(log_it* sink, uint32_t sink_flags);

    // Names a level (null: "N/A"). 0, or log_bad_value: level > 31.
    uint32_t set_level_name(uint32_t level, const char* name);

    // Null for a level > 31. Valid until release(). Takes no lock.
    [[nodiscard]] const char* level_name(uint32_t level) const;

    // The low byte counts: the least severe level that passes, whatever its module allows. 255
    // switches logging off.
    void set_gate(uint32_t max_level);

    // -1 when logging is off. Takes no lock.
    [[nodiscard]] int gate() const;

    // Whether a line would pass gate and module; then both names are set, valid until release(),
    // and the default sinks are bound if they are not yet. Locks only to bind.
    [[nodiscard]] bool is_enabled(
        uint32_t module_id, uint32_t level, const char*& module_name, const char*& level_name);

    // Binds the default sinks: every slot of every module gets the default flags, the custom sink
    // as primary if the flags have log_to_primary, and the default file sink, created if need be,
    // as secondary if they have log_to_secondary. Deliberately overwrites what registration put
    // there: that decides which lines pass, the binding where they go. After detach() only the
    // places that the sink has left get a sink, the default file sink. 0 or log_already_attached.
    uint32_t attach();

    // Takes a sink out of every slot. The next enabled call attaches again.
    void detach(log_it* sink);

    // Takes all sinks out of all slots, and the custom sink away; the next enabled call binds anew.
    void forget_sinks();

    // Passes a line to its slot's sinks, primary first, and to one of them if both are the same;
    // or, when given, to `override_sink` only. Does not ask the gate; a level above the module's
    // maximum is dropped. log_bad_argument, log_not_registered, the result of `override_sink`
    // (log_sink_failed if it threw), else 0: what other sinks answer is their own affair.
    uint32_t write(uint32_t module_id, uint32_t level, const char* data, size_t length,
        log_it* override_sink = nullptr);

    // The lock of the tables, for what must not overlap with a line being written.
    thread_mutex_recursive& mutex() { return m_mutex; }

    // The custom sink and the default flags belong to the process, so they outlive the control.
    // They take no lock. The caller owns the custom sink; null, as at first, is none. The flags are
    // log_to_primary and log_to_secondary at first.
    static void set_custom_sink(log_it* sink)
    {
        s_custom_sink.store(sink, std::memory_order_release);
    }
    [[nodiscard]] static log_it* custom_sink()
    {
        return s_custom_sink.load(std::memory_order_acquire);
    }
    static void set_default_flags(uint8_t sink_flags)
    {
        s_default_flags.store(sink_flags, std::memory_order_relaxed);
    }
    [[nodiscard]] static uint8_t default_flags()
    {
        return s_default_flags.load(std::memory_order_relaxed);
    }

private:
    log_control_t();
    ~log_control_t();

    enum class binding_t : uint8_t { none, with_vacant_places, complete };

    struct process_hooks_t;
    static bool install_process_hooks();
    static const bool s_has_process_hooks;

    static log_control_t* create();

    void close();
    void log_own_line(const char* text);
    void prepare_line(
        uint32_t module_id, uint32_t level, const char*& module_name, const char*& level_name);
    bool is_registered(uint32_t module_id) const
    {
        assert(module_id < log_module_count);
        return m_modules[module_id].id == module_id;
    }
    bool has_vacant_place() const;
    bool fill_vacant_places();
    const char* stored_name(const char* name);
    uint32_t passing_levels(uint32_t module_id) const;
    void update_gate(uint32_t module_id);

    static inline constinit std::atomic<log_it*> s_custom_sink = nullptr;
    static inline constinit std::atomic<uint8_t> s_default_flags
        = log_to_primary | log_to_secondary;

    thread_mutex_recursive m_mutex;
    std::atomic<uint8_t> m_gate;
    std::atomic<binding_t> m_binding = binding_t::none;
    bool m_creates_default_sink = true;
    std::set<std::string> m_names; // grows by the distinct names given, as readers hold on to them
    std::array<log_level_entry_t, log_level_count> m_levels;
    std::vector<log_module_t> m_modules;
};

} // namespace rkb
