// The broken-down local time, and the one place where the library reads it.
#pragma once

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
};

using local_time_source_t = local_time_t (*)();

// What the current source says. Any thread; never fails: all fields are 0 when the system cannot
// tell. The system's source breaks down each second once per thread, so that a change of the
// time zone is seen with the next second.
[[nodiscard]] local_time_t local_time();

// Replaces the source for the whole process; null brings the system's back. For tests that have
// to stand at midnight. `source` may be called by any thread, several at once.
void set_local_time_source(local_time_source_t source);

} // namespace rkb
