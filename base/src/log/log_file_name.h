// The names of log files and of the file that remembers their index. Pure.
#pragma once

#include "base/src/util/local_time.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace rkb {

inline constexpr const char* log_file_tag = "sdk";
inline constexpr const char* log_id_file_name = "sdk_log_file_id.txt";

// Text of fixed size, NUL-terminated.
using log_file_stamp_t = std::array<char, 64>;
using log_file_suffix_t = std::array<char, 256>; // file names have at most 255 bytes

// Date, time, process, tag and index: "20260314_090507_4711_sdk_3".
[[nodiscard]] log_file_stamp_t log_file_stamp(
    const local_time_t& time, uint32_t process, uint32_t index);

// What names of files of this index contain: "_sdk_3.log". None when no file name could.
[[nodiscard]] std::optional<log_file_suffix_t> log_file_suffix(
    uint32_t index, std::string_view extension);

// The number that the id file holds, white space around it allowed. None when `text` is anything
// else or when the number does not fit.
[[nodiscard]] std::optional<uint32_t> parse_log_file_id(std::string_view text);

// The index with which a run begins: the one after `last`, below `max_index`; 0 when there is no
// last index or `max_index` is 0. Rotation goes on to `max_index` itself; that the first index
// cannot be it is deliberate.
[[nodiscard]] uint32_t first_log_file_index(std::optional<uint32_t> last, uint32_t max_index);

// The index after `index` in the circle 0..max_index.
[[nodiscard]] uint32_t next_log_file_index(uint32_t index, uint32_t max_index);

} // namespace rkb
