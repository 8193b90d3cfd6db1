// The process-wide file sink, to which lines go by default. Any thread may call these functions.
#pragma once

#include "base/src/log/logger_file.h"

namespace rkb {

inline constexpr uint32_t default_max_size = 41'943'040; // 40 MiB
inline constexpr uint32_t default_max_index = 9;

// The sink. Creates it if there is none: default directory, the program's name, extension "log" and
// the limits above. The library owns it; it lives until destroy_default_file_sink(). Null when
// there is no memory for it.
[[nodiscard]] logger_file* default_file_sink();

// The sink, or null if it has not been created. Locks nothing.
[[nodiscard]] logger_file* existing_default_file_sink();

// Creates the sink with other values: see the constructor of logger_file_base_t. If there is a sink
// already, returns that one unchanged.
logger_file* create_default_file_sink(const char* directory, const char* base_name,
    const char* extension, uint32_t max_size, uint32_t max_index);

// Calls logger_file_base_t::configure() on the sink, which it creates if there is none. Waits for a
// line that is being written. Returns log_sink_failed when there is no memory for the sink.
uint32_t configure_default_file_sink(uint32_t max_size, uint32_t max_index);

// Takes the sink out of the logging control, closes and destroys it. The next enabled line creates
// a new one and puts it into the same places. No other thread may be using the sink's pointer.
void destroy_default_file_sink();

} // namespace rkb
