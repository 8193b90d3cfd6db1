#include "base/src/util/thread.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <unistd.h>

namespace rkb {

namespace {

size_t stack_size()
{
    const auto system_minimum = static_cast<size_t>(std::max(sysconf(_SC_THREAD_STACK_MIN), 0L));
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t size = std::max(system_minimum, thread_t::min_stack_size);
    return (size + page - 1) / page * page;
}

} // namespace

thread_t::thread_t(const char* name)
{
    if (name)
        std::copy_n(name, strnlen(name, max_name_length), m_name);
}

thread_t::~thread_t()
{
    assert(!m_started);
}

int thread_t::start(routine_t routine, void* argument)
{
    assert(routine);
    join();
    m_routine = routine;
    m_argument = argument;

    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    const int size_error = pthread_attr_setstacksize(&attributes, stack_size());
    m_started = !size_error && pthread_create(&m_handle, &attributes, enter, this) == 0;
    pthread_attr_destroy(&attributes);
    return m_started ? 1 : 0;
}

void thread_t::join()
{
    if (m_started)
        pthread_join(m_handle, nullptr);
    m_started = false;
    m_handle = {};
    m_routine = nullptr;
    m_argument = nullptr;
}

void* thread_t::enter(void* self)
{
    const auto* thread = static_cast<const thread_t*>(self);
    if (thread->m_name[0])
        pthread_setname_np(pthread_self(), thread->m_name);
    thread->m_routine(thread->m_argument);
    return nullptr;
}

} // namespace rkb
