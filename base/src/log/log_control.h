// The control of the library's logging: which lines pass, and to which sinks they go.
#pragma once

#include "base/src/log/log_table.h"
#include "base/src/util/no_copy.h"
#include "base/src/util/thread_mutex.h"

#include <cassert>
#include <set>
#include <string>
#include <vector>

namespace rkb {

// How the control obtains its default sink. logger_file_default.cpp defines the object. It is
// constant-initialised, so that lines can be logged before main. The control does not own the sink.
struct log_default_sink_t {
    log_it* (*get)();                   // creates the sink if there is none; null when that fails
    log_it* (*existing)();              // null if there is none
    thread_mutex_recursive& (*mutex)(); // guards the sink's creation; locked after the control's
};
extern const log_default_sink_t log_default_sink;

// There is one per process. The first instance() creates it and release() destroys it. Call sites
// use the macros of log.h instead of this class.
//
// All operations may be called from any thread. Unless their comment says otherwise they lock the
// control's recursive mutex, which is also held while a sink is called: they block as long as a
// sink does. A process may fork() while other threads log; the child can log, too.
//
// Sinks are not owned. Names are copied, for which std::bad_alloc may be thrown.
class log_control_t : no_copy {
public:
    // Null after release(), while the process exits, and in calls made by the control's constructor
    // (other threads wait for the constructor). Also null when there is no memory for the control;
    // the next call tries again. Locks a mutex only to create the control.
    [[nodiscard]] static log_control_t* instance();

    // Logs its call and destroys the control. Later log calls have no effect. Other threads must
    // have stopped logging.
    //
    // If this has not been called, the exit of the process logs the same lines, but only to the
    // default file sink, because other sinks may already be destroyed. Later log calls have no
    // effect. The control and the default file sink stay in memory, because other threads may still
    // be logging.
    static void release();

    // Registers a module, or changes its registration: its name (null: "N/A"), its least severe
    // level and the flags of all its slots. Puts `sink` into the slots of the levels up to that
    // one: into the primary place if the flags have log_to_primary, else into the secondary place
    // if they have log_to_secondary. Returns 0, or log_bad_argument for an id above 255 or a level
    // above 31.
    uint32_t register_module(uint32_t module_id, const char* name, uint32_t max_level, log_it* sink,
        uint32_t sink_flags);

    // Unregisters a module and empties its slots. Module 0 still counts as registered afterwards
    // and only changes its name, because the id of an empty entry is 0. Returns 0, log_bad_argument
    // or log_not_registered.
    uint32_t unregister_module(uint32_t module_id);

    // Sets the primary sink of one level. Returns 0, log_bad_argument or log_not_registered.
    uint32_t set_sink(uint32_t module_id, uint32_t level, log_it* sink);

    // Sets the flags of all slots of a module. Returns 0, log_bad_argument or log_not_registered.
    uint32_t set_flags(uint32_t module_id, uint32_t sink_flags);

    // Puts a sink into every slot of every module, into the place that register_module() would
    // choose for these flags. The flags of the slots do not change. Returns 0. Deliberately locks
    // nothing, because it is for set-up before logging starts: a line that is being written at the
    // same time is written to the old or to the new sink.
    uint32_t set_sink_everywhere(log_it* sink, uint32_t sink_flags);

    // Names a level (null: "N/A"). Returns 0, or log_bad_value for a level > 31.
    uint32_t set_level_name(uint32_t level, const char* name);

    // Null for a level > 31. The text is valid until release(). Locks nothing.
    [[nodiscard]] const char* level_name(uint32_t level) const;

    // Sets the gate to the low byte of `max_level`. Less severe levels do not pass, even if their
    // module allows them. 255 switches logging off.
    void set_gate(uint32_t max_level);

    // -1 when logging is off. Locks nothing.
    [[nodiscard]] int gate() const;

    // Whether a line passes the gate and its module. If so, sets both names, which are valid until
    // release(), and binds the default sinks if they are not bound yet. Locks only to bind.
    [[nodiscard]] bool is_enabled(
        uint32_t module_id, uint32_t level, const char*& module_name, const char*& level_name);

    // Binds the default sinks: every slot of every module gets the default flags, the custom sink
    // as its primary sink if the flags have log_to_primary, and the default file sink as its
    // secondary sink if they have log_to_secondary. Creates the file sink if necessary. This
    // deliberately overwrites the sinks of the registrations: the registrations decide which lines
    // pass, the binding decides to which sinks they are written. Returns 0 or log_already_attached.
    //
    // After a binding and a detach() this only puts the default file sink into the places that the
    // detached sink has left. The same happens to the places of the default file sink if there was
    // no memory for it. Returns 0.
    uint32_t attach();

    // Takes a sink out of every slot. The next enabled call attaches again.
    void detach(log_it* sink);

    // Takes all sinks out of all slots and unsets the custom sink. The next enabled call binds the
    // default sinks anew.
    void forget_sinks();

    // Passes a line to the sinks of its slot, to the primary one first, and only once if both are
    // the same. With an `override_sink`, passes it to that one only. A level above the module's
    // maximum is dropped; the gate does not matter. Returns log_bad_argument, log_not_registered,
    // the result of `override_sink` (log_sink_failed if it threw), or 0. The results of other sinks
    // are ignored.
    uint32_t write(uint32_t module_id, uint32_t level, const char* data, size_t length,
        log_it* override_sink = nullptr);

    // While the caller has this locked, no line is written and only set_sink_everywhere() changes
    // the tables.
    thread_mutex_recursive& mutex() { return m_mutex; }

    // The custom sink and the default flags belong to the process and outlive the control. Reading
    // and setting them locks nothing. The caller owns the custom sink. At first there is none
    // (null) and the flags are log_to_primary | log_to_secondary.
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

    struct process_hooks_t; // called by fork() and at the exit of the process
    static bool install_process_hooks();
    static const bool s_has_process_hooks;

    static log_control_t* create();

    void close_at_exit();
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
    bool m_creates_default_sink = true; // false at exit
    std::set<std::string> m_names; // never shrinks, because call sites may still read the names
    std::array<log_level_entry_t, log_level_count> m_levels;
    std::vector<log_module_t> m_modules;
};

} // namespace rkb
