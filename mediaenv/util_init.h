// Starts the base library's logging, to files with the limits from the media settings.
#pragma once

#include <cstdint>

namespace rkb {

// Switches on the base library's own lines. Creates the default file sink in `directory`, with
// `base_name` and `extension` (see the constructor of logger_file_base_t; all may be null),
// registers module 1 as "UTIL" for all levels as register_logger() does with a null sink, and logs
// its call. A default file sink that exists already is kept as it is.
//
// Only the first call in a process does this; later calls are only counted and return 0, possibly
// before the first one has returned. The first call returns 0, log_sink_failed when there is no
// memory for the sink, or log_not_registered when the logging control no longer exists. Any thread.
uint32_t UTIL_INIT(const char* directory, const char* base_name, const char* extension);

// The limits of a file sink: bytes per file, and the highest index.
struct log_file_limits_t {
    uint32_t max_size;
    uint32_t max_index;
};

// Converts a size in MiB (0 counts as 1; below 0 and above 100 count as 100) and a number of files
// (below 2 counts as 2; above 50 counts as 50).
[[nodiscard]] log_file_limits_t log_file_limits(int size, int count);

} // namespace rkb
