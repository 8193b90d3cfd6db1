// The base library's start: log files with the limits that the media settings give.
#pragma once

#include <cstdint>

namespace rkb {

// Switches the base library's own lines on: creates the default file sink in `directory`, with
// `base_name` and `extension` (for the three see logger_file_base_t's constructor; null is
// allowed), registers module 1 as "UTIL" for all levels, and logs the call. Only the first call of
// the process acts, the others are counted. A default file sink that exists already stays as it
// is. 0, or log_sink_failed or log_not_registered at the process's end, when there can be no sink
// or no logging any more. Any thread; a call beside the first may return before that is done.
uint32_t UTIL_INIT(const char* directory, const char* base_name, const char* extension);

// Limits of a file sink: bytes per file, and the highest index.
struct log_file_limits_t {
    uint32_t max_size;
    uint32_t max_index;
};

// From a size in MiB (1 to 100; 0 counts as 1, all else as 100) and a number of files (2 to 50;
// less counts as 2, more as 50).
[[nodiscard]] log_file_limits_t log_file_limits(int size, int count);

} // namespace rkb
