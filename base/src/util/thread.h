// One joinable thread with a stack of known size.
#pragma once

#include "base/src/util/no_copy.h"

#include <cstddef>
#include <pthread.h>

namespace rkb {

// Not thread-safe: only the thread that owns the object may call start() and join(). It must call
// join() before the object is destroyed.
class thread_t : no_copy {
public:
    using routine_t = void (*)(void* argument);

    // The kernel keeps 16 bytes of a thread's name, its terminator included.
    static constexpr size_t max_name_length = 15;
    static constexpr size_t min_stack_size = 0x100000;

    // `name` may be null for none; it is cut at max_name_length.
    explicit thread_t(const char* name = nullptr);
    ~thread_t();

    // Joins an earlier thread of this object, then runs `routine(argument)` on a new one. The stack
    // is the larger of the system's minimum and min_stack_size, rounded up to whole pages. Returns
    // 1, or 0 when the system cannot create a thread.
    [[nodiscard]] int start(routine_t routine, void* argument);

    // Waits for the routine to return and clears the object. Does nothing without a thread.
    void join();

private:
    static void* enter(void* self);

    pthread_t m_handle = {};
    bool m_started = false;
    char m_name[max_name_length + 1] = {};
    routine_t m_routine = nullptr;
    void* m_argument = nullptr;
};

} // namespace rkb
