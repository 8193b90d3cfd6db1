// The text stream that builds one log line.
#pragma once

#include "base/src/auxi/text_stream.h"

namespace rkb {

// A line holds at most log_line_size - 1 characters.
inline constexpr size_t log_line_size = 2049;

// Starts with the prefix of the line: local time, module name (unless null),
// [process id:thread id:thread handle] and level name (unless null), each followed by a tab.
class log_stream_t final : public text_stream_t {
public:
    log_stream_t(char* buffer, size_t size, const char* level_name, const char* module_name);
};

} // namespace rkb
