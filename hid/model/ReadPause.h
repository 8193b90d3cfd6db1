// The pause after a failed read. An unplugged device fails every read at once, so that reading it
// without a pause would keep a core busy.
#pragma once

#include <algorithm>
#include <cstdint>

namespace KX {

inline constexpr uint32_t kMaxReadPauseMs = 100;

// The next pause in milliseconds. `previousMs` is the pause after the failed read right before, or
// 0 when there was none.
[[nodiscard]] constexpr uint32_t NextReadPause(uint32_t previousMs)
{
    return previousMs == 0 ? 1 : std::min(2 * previousMs, kMaxReadPauseMs);
}

} // namespace KX
