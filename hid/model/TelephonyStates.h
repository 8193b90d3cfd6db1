// The states of a telephony device, as the stack's interface returns them.
#pragma once

#include <cstdint>

namespace KX {

enum StackMuteState : uint32_t {
    kMuteNeverSet = 0,
    kMuted = 1,
    kUnmuted = 2,
};

enum StackCallState : uint32_t {
    kCallNeverSet = 0,
    kCallIdle = 1,   // on hook
    kCallActive = 2, // off hook
    kCallRinging = 3,
};

} // namespace KX
