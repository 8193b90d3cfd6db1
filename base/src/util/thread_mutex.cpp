#include "base/src/util/thread_mutex.h"

#include <cerrno>
#include <ctime>

namespace rkb {

thread_mutex_recursive::thread_mutex_recursive()
{
    init();
}

thread_mutex_recursive::~thread_mutex_recursive()
{
    pthread_mutex_destroy(&m_mutex);
}

void thread_mutex_recursive::lock()
{
    pthread_mutex_lock(&m_mutex);
}

void thread_mutex_recursive::unlock()
{
    pthread_mutex_unlock(&m_mutex);
}

void thread_mutex_recursive::reset_in_child()
{
    // This call does not unlock the mutex, because its recorded owner does not exist in the child.
    // It is for race detectors, which keep their own records and would take the mutex for locked.
    unlock();
    init();
}

void thread_mutex_recursive::init()
{
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&m_mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

condition_t::condition_t()
{
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&m_condition, &attributes);
    pthread_condattr_destroy(&attributes);
}

condition_t::~condition_t()
{
    pthread_cond_destroy(&m_condition);
}

bool condition_t::wait(thread_mutex_recursive& mutex, uint32_t milliseconds)
{
    if (milliseconds == no_limit)
        return pthread_cond_wait(&m_condition, &mutex.m_mutex) == 0;

    constexpr long nanoseconds_per_second = 1'000'000'000;
    timespec until{};
    clock_gettime(CLOCK_MONOTONIC, &until);
    until.tv_sec += milliseconds / 1000;
    until.tv_nsec += long{milliseconds % 1000} * 1'000'000;
    if (until.tv_nsec >= nanoseconds_per_second) {
        until.tv_nsec -= nanoseconds_per_second;
        ++until.tv_sec;
    }
    return pthread_cond_timedwait(&m_condition, &mutex.m_mutex, &until) != ETIMEDOUT;
}

void condition_t::signal()
{
    pthread_cond_signal(&m_condition);
}

void condition_t::broadcast()
{
    pthread_cond_broadcast(&m_condition);
}

} // namespace rkb
