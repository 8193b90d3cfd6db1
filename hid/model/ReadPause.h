// The pause after a failed read. With an unplugged device every read fails at once, so that reading
// without a pause would keep a core busy.
#pragma once

#include <algorithm>
#include <cstdint>

namespace KX {

inline constexpr uint32_t kMaxReadPauseMs = 100;

// The next pause in milliseconds. `previousMs` is the pause after the previous read if that failed
// too, else 0.
[[nodiscard]] constexpr uint32_t NextReadPause(uint32_t previousMs)
{
    return previousMs == 0 ? 1 : std::min(2 * previousMs, kMaxReadPauseMs);
}

} // namespace KX
