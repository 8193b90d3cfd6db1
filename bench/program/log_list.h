// What log-list does on command: Command{LogList, LogView} appends lines, and tells when that began
// and when it was done.
#pragma once

#include <cstdint>

namespace bench {

enum class LogList : int32_t { Short, Long };
enum class LogView : int32_t { AtTop, MovedToEnd };

inline constexpr int kShortList = 10; // lines
inline constexpr int kLongList = 100'000;
inline constexpr int kAppendedLines = 10; // a command

} // namespace bench
