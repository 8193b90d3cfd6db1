// The commands of log-list: Command{LogList, LogView} appends lines. The Acted event has the start
// time, the Report event the end time.
#pragma once

#include <cstdint>

namespace bench {

enum class LogList : int32_t { Short, Long };
enum class LogView : int32_t { AtTop, MovedToEnd };

inline constexpr int kShortList = 10; // lines
inline constexpr int kLongList = 100'000;
inline constexpr int kAppendedLines = 10; // a command

} // namespace bench
