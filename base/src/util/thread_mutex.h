// Recursive mutex and monotonic condition variable over POSIX threads.
#pragma once

#include "base/src/util/no_copy.h"

#include <cstdint>
#include <pthread.h>

namespace rkb {

// A mutex that its owner may lock again; unlock as often as locked. BasicLockable, so
// std::lock_guard works on it. Any thread may lock; only the owner may unlock.
class thread_mutex_recursive : no_copy {
public:
    thread_mutex_recursive();
    ~thread_mutex_recursive();

    void lock();
    void unlock();

    // Unlocks the mutex in a process made by fork(), whichever thread of the parent had locked it.
    // For the child's handler of pthread_atfork() only.
    void reset_in_child();

private:
    friend class condition_t;
    void init();

    pthread_mutex_t m_mutex;
};

// A condition variable whose time-outs are on the monotonic clock, so that setting the
// machine's time neither shortens nor lengthens a wait.
class condition_t : no_copy {
public:
    static constexpr uint32_t no_limit = 0xFFFFFFFF;

    condition_t();
    ~condition_t();

    // Waits for signal() or broadcast(), at most `milliseconds` (no_limit: for ever). The caller
    // has locked `mutex` exactly once. False when the time ran out. May also return true without
    // a signal, as condition variables do: test the condition in a loop.
    [[nodiscard]] bool wait(thread_mutex_recursive& mutex, uint32_t milliseconds);

    void signal();
    void broadcast();

private:
    pthread_cond_t m_condition;
};

} // namespace rkb
