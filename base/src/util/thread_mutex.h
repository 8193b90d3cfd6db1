// A recursive mutex and a condition variable over POSIX threads.
#pragma once

#include "base/src/util/no_copy.h"

#include <cstdint>
#include <pthread.h>

namespace rkb {

// A mutex that its owner may lock again. It is free when it has been unlocked as often as locked.
// Any thread may lock it; only the owner may unlock it. BasicLockable, so std::lock_guard works.
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

// A condition variable whose time-outs use the monotonic clock: setting the system's time neither
// shortens nor lengthens a wait. Any thread.
class condition_t : no_copy {
public:
    static constexpr uint32_t no_limit = 0xFFFFFFFF;

    condition_t();
    ~condition_t();

    // Unlocks `mutex`, which the caller has locked exactly once, waits for signal() or broadcast()
    // and locks it again. Returns false when `milliseconds` have passed; no_limit waits for ever.
    // It may also return true without a signal, as condition variables do: call it in a loop that
    // tests the condition.
    [[nodiscard]] bool wait(thread_mutex_recursive& mutex, uint32_t milliseconds);

    void signal();
    void broadcast();

private:
    pthread_cond_t m_condition;
};

} // namespace rkb
