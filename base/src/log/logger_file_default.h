// The process-wide file sink. Any thread; a mutex of its own guards creating and destroying it.
#pragma once

#include "base/src/log/logger_file.h"

namespace rkb {

inline constexpr uint32_t default_max_size = 41'943'040; // 40 MiB
inline constexpr uint32_t default_max_index = 9;

// The sink, created on demand: default directory, named after the program, extension "log", the
// limits above. The library owns it until destroy_default_file_sink(). Null when there is no memory
// for it.
[[nodiscard]] logger_file* default_file_sink();

// The sink if it has been created, else null. Takes no lock.
[[nodiscard]] logger_file* existing_default_file_sink();

// Creates the sink with values of one's own (see logger_file_base_t's constructor); one that is
// already there stays as it is and is returned.
logger_file* create_default_file_sink(const char* directory, const char* base_name,
    const char* extension, uint32_t max_size, uint32_t max_index);

// logger_file_base_t::configure on the sink, creating it; not while a line is being written. Also
// log_sink_failed when there is no memory for the sink.
uint32_t configure_default_file_sink(uint32_t max_size, uint32_t max_index);

// Takes the sink out of the logging control, closes and destroys it. The next enabled line creates
// a new one for the places that it left. No other thread may be using the sink's pointer.
void destroy_default_file_sink();

} // namespace rkb
