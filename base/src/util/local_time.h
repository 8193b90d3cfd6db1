// The broken-down local time, and the one place where the library reads it.
#pragma once

#include "base/src/util/thread_mutex.h"

#include <cstdint>

namespace rkb {

struct local_time_t {
    uint16_t year;  // in full
    uint16_t month; // 1..12
    uint16_t day;   // of the month, 1..31
    uint16_t hour;
    uint16_t minute;
    uint16_t second;
    uint16_t milliseconds;
    uint16_t weekday; // 0 is Sunday

    bool operator==(const local_time_t&) const = default;
};

// The time now. Any thread; never fails: all fields are 0 when the system cannot tell. The
// system's time is broken down once per second and thread, so that a change of the time zone is
// seen with the next second.
[[nodiscard]] local_time_t local_time();

// The same at a third of the cost, behind by up to a tick of the system's clock, some
// milliseconds. Compare its day with its own like only: it may still be in yesterday when
// local_time() no longer is.
[[nodiscard]] local_time_t local_date();

// The lock around the C library's conversion to local time. That has a lock of its own, which the
// child of a fork() finds as it was: hold this one during fork(), so that it is not taken then.
[[nodiscard]] thread_mutex_recursive& local_time_mutex();

// Makes both ask `source` instead of the system, in the whole process; null undoes it. For tests
// that have to stand at midnight. `source` may be called by any thread, several at once.
using local_time_source_t = local_time_t (*)();
void set_local_time_source(local_time_source_t source);

} // namespace rkb
