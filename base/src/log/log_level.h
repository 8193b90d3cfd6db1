// The numbers of logging: levels, modules, sink flags and result codes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rkb {

// A lower number is more severe. Levels 6 to 31 exist too; they are named "N/A" at first.
enum log_level_t : uint32_t {
    log_fatal = 0,
    log_error = 1,
    log_warning = 2,
    log_info = 3,
    log_debug = 4,
    log_func = 5,
};

inline constexpr size_t log_level_count = 32;
inline constexpr size_t log_module_count = 256;

// The module of the base library's own lines.
inline constexpr uint32_t log_module_util = 1;

// Sink flags are a mask.
inline constexpr uint32_t log_to_secondary = 1;
inline constexpr uint32_t log_to_primary = 2;

// Results. 0 is success.
inline constexpr uint32_t log_bad_argument = 2; // module id > 255 or level > 31
inline constexpr uint32_t log_not_registered = 5;
inline constexpr uint32_t log_bad_value = 8; // no such level name; a limit out of its range
inline constexpr uint32_t log_already_attached = 10;
inline constexpr uint32_t log_sink_failed = 999;

} // namespace rkb
