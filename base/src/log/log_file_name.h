// The names of log files, and of the id file, which holds the last index used. Pure functions.
#pragma once

#include "base/src/util/local_time.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace rkb {

inline constexpr const char* log_file_tag = "sdk";
inline constexpr const char* log_id_file_name = "sdk_log_file_id.txt";

// NUL-terminated texts.
using log_file_stamp_t = std::array<char, 64>;
using log_file_suffix_t = std::array<char, 256>; // file names have at most 255 bytes

// Date, time, process, tag and index: "20260314_090507_4711_sdk_3".
[[nodiscard]] log_file_stamp_t log_file_stamp(
    const local_time_t& time, uint32_t process, uint32_t index);

// What the names of all files of an index contain: "_sdk_3.log". None if the text is too long for a
// file name.
[[nodiscard]] std::optional<log_file_suffix_t> log_file_suffix(
    uint32_t index, std::string_view extension);

// The number in the id file; white space around it is ignored. None when `text` is not a number or
// does not fit.
[[nodiscard]] std::optional<uint32_t> parse_log_file_id(std::string_view text);

// The index of a run's first file: (last + 1) modulo `max_index`, or 0 when there is no last index
// or `max_index` is 0. It is deliberate that this is always below `max_index`, although rotation
// also uses `max_index` itself.
[[nodiscard]] uint32_t first_log_file_index(std::optional<uint32_t> last, uint32_t max_index);

// The index after `index`; 0 comes after `max_index`.
[[nodiscard]] uint32_t next_log_file_index(uint32_t index, uint32_t max_index);

} // namespace rkb
