// The text stream in which one log line is built.
#pragma once

#include "base/src/auxi/text_stream.h"

namespace rkb {

// A line holds at most log_line_size - 1 characters.
inline constexpr size_t log_line_size = 2049;

// Begins the text with the line's prefix, fields ended by a tab each:
// local time, module name (unless null), [process:thread:handle], level name (unless null).
class log_stream_t final : public text_stream_t {
public:
    log_stream_t(char* buffer, size_t size, const char* level_name, const char* module_name);
};

} // namespace rkb
