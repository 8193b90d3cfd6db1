// Writes to standard streams and files of any kind.
#pragma once

#include <string_view>

namespace ctl {

// Writes all bytes, also to a file that is opened as non-blocking. Blocks while nobody reads what
// was written before, until a stop signal arrives; then drops the rest. Returns 0, or the errno of
// a failed write.
[[nodiscard]] int writeAll(int fd, std::string_view bytes);

} // namespace ctl
