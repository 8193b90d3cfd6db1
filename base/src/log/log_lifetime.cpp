// Birth and death of the logging control.
#include "base/src/log/log.h"

#include "base/src/log/logger_file_default.h"

#include <mutex>
#include <new>

namespace rkb {

namespace {

enum class stage_t { none, creating, there, gone };

// Constant-initialised and never destroyed: they answer before main and after it, when there is
// no mutex to take.
constinit std::atomic<log_control_t*> current{nullptr};
constinit std::atomic<stage_t> stage{stage_t::none};

// Guards creation and release. Made at the latest before main, destroyed at exit together with the
// control; after that nobody takes it, as the stage is then `gone`.
struct singleton_t : no_copy {
    singleton_t() { prepare_default_file_sink(); } // so that it outlives the control
    ~singleton_t()
    {
        create_no_default_file_sink();
        if (log_control_t* control = current.load(std::memory_order_acquire))
            control->forget_sinks(); // sinks of main's, or made after this, are gone by now
        log_control_t::release();
    }

    thread_mutex_recursive mutex;
};

singleton_t& singleton()
{
    static singleton_t it;
    return it;
}

[[maybe_unused]] const singleton_t& made_before_main = singleton();

} // namespace

log_control_t* log_control_t::instance()
{
    log_control_t* control = current.load(std::memory_order_acquire);
    return control ? control : create();
}

log_control_t* log_control_t::create()
{
    if (stage.load(std::memory_order_acquire) == stage_t::gone)
        return nullptr;
    const std::lock_guard lock(singleton().mutex);
    // Not `none`: another thread was faster, or this one is in the middle of it.
    if (stage.load(std::memory_order_relaxed) != stage_t::none)
        return current.load(std::memory_order_relaxed);
    stage.store(stage_t::creating, std::memory_order_relaxed);
    auto* control = new (std::nothrow) log_control_t;
    current.store(control, std::memory_order_release);
    stage.store(control ? stage_t::there : stage_t::none, std::memory_order_relaxed);
    return control;
}

void log_control_t::release()
{
    RKB_LOG(log_module_util, log_info, "log_control_t::release()\n");
    if (stage.load(std::memory_order_acquire) == stage_t::gone)
        return;
    const std::lock_guard lock(singleton().mutex);
    delete current.load(std::memory_order_relaxed);
    for (std::atomic<uint8_t>& levels : log_open_levels)
        levels.store(0, std::memory_order_relaxed);
    stage.store(stage_t::gone, std::memory_order_release);
}

log_control_t::~log_control_t()
{
    RKB_LOG(log_module_util, log_info, "log_control_t::~log_control_t()\n");
    current.store(nullptr, std::memory_order_release);
}

} // namespace rkb
