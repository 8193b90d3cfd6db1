// The state of a meeting's calls.
#pragma once

namespace ctl {

enum class CallState {
    kIdle,
    kRinging,
    kActive,
    kMuted,   // an active call, muted by the host
    kWaiting, // a second call rings during a call
};

// Whether the device is off-hook: a call is active.
constexpr bool isOffHook(CallState state)
{
    return state != CallState::kIdle && state != CallState::kRinging;
}

} // namespace ctl
