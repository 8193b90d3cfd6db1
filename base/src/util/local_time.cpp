#include "base/src/util/local_time.h"

#include "base/src/util/never_destroyed.h"

#include <atomic>
#include <ctime>
#include <mutex>

namespace rkb {

namespace {

local_time_t to_local_time(time_t second)
{
    const std::lock_guard lock(local_time_mutex());
    tm parts{};
    if (!localtime_r(&second, &parts))
        return {};
    return {
        .year = static_cast<uint16_t>(parts.tm_year + 1900),
        .month = static_cast<uint16_t>(parts.tm_mon + 1),
        .day = static_cast<uint16_t>(parts.tm_mday),
        .hour = static_cast<uint16_t>(parts.tm_hour),
        .minute = static_cast<uint16_t>(parts.tm_min),
        .second = static_cast<uint16_t>(parts.tm_sec),
        .milliseconds = 0,
        .weekday = static_cast<uint16_t>(parts.tm_wday),
    };
}

// localtime_r() takes a process-wide lock and is too slow to be called for every log line.
struct second_cache_t {
    time_t second = -1;
    local_time_t time = {};
};
thread_local constinit second_cache_t cache;

local_time_t system_time(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    if (now.tv_sec != cache.second)
        cache = {now.tv_sec, to_local_time(now.tv_sec)};
    local_time_t time = cache.time;
    time.milliseconds = static_cast<uint16_t>(now.tv_nsec / 1'000'000);
    return time;
}

constinit std::atomic<local_time_source_t> replacement_source{nullptr};

local_time_t time_by(clockid_t clock)
{
    const local_time_source_t source = replacement_source.load(std::memory_order_acquire);
    return source ? source() : system_time(clock);
}

} // namespace

local_time_t local_time()
{
    return time_by(CLOCK_REALTIME);
}

local_time_t coarse_local_time()
{
    return time_by(CLOCK_REALTIME_COARSE);
}

thread_mutex_recursive& local_time_mutex()
{
    static never_destroyed_t<thread_mutex_recursive> mutex;
    return mutex.value;
}

void set_local_time_source(local_time_source_t source)
{
    replacement_source.store(source, std::memory_order_release);
}

} // namespace rkb
