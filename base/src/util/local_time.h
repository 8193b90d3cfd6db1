// The local time in calendar fields. The whole library reads the local time with these functions.
#pragma once

#include "base/src/util/thread_mutex.h"

#include <cstdint>

namespace rkb {

struct local_time_t {
    uint16_t year;  // 2026, not 26
    uint16_t month; // 1..12
    uint16_t day;   // of the month, 1..31
    uint16_t hour;
    uint16_t minute;
    uint16_t second;
    uint16_t milliseconds;
    uint16_t weekday; // 0 is Sunday

    bool operator==(const local_time_t&) const = default;
};

// The time now, in the process's time zone. Any thread. All fields are 0 when the system cannot
// convert the time. The conversion is done once per second and thread; after tzset() the new time
// zone is used from the next second on.
[[nodiscard]] local_time_t local_time();

// A cheaper local_time(): it may be up to one tick of the system's clock late, which is a few
// milliseconds. Its days are only comparable with each other: shortly after midnight it may still
// return yesterday when local_time() returns today.
[[nodiscard]] local_time_t coarse_local_time();

// Guards the C library's conversion to local time, which takes a lock that fork() does not reset in
// the child. The logging control locks this mutex during fork(), so that the C library's lock is
// free then.
[[nodiscard]] thread_mutex_recursive& local_time_mutex();

// Makes both functions return what `source` returns, in the whole process; null restores the
// system's time. For tests. `source` may be called by several threads at once.
using local_time_source_t = local_time_t (*)();
void set_local_time_source(local_time_source_t source);

} // namespace rkb
