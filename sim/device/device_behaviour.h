// What a device does beyond sending a report for each press. Plain data.
#pragma once

#include "sim/device/wire_bytes.h"

#include <chrono>
#include <string>
#include <vector>

namespace sim {

enum class HookSwitch {
    kFollowsLamp, // keeps its position; the off-hook LED moves it, too
    kStays,       // keeps its position, as a cradle does, whatever the LED shows
    kMomentary,   // is pressed and released
};

// Reports, as on the wire, that the device sends when one of its LEDs changes.
struct Reaction {
    std::string lamp; // its name: see Panel
    bool on = true;   // sent when it is switched on, else when it is switched off
    std::vector<Bytes> reports = {};

    bool operator==(const Reaction&) const = default;
};

struct DeviceBehaviour {
    HookSwitch hookSwitch = HookSwitch::kFollowsLamp;
    // The LEDs, by name, after whose changes the device sends an input report with its state.
    std::vector<std::string> acknowledges = {};
    // When its mute LED changes, the device sends a press and a release of its mute button.
    bool togglesMute = false;
    std::vector<Reaction> reactions = {};
    // Reports, as on the wire, that the device sends when a program begins to read from the
    // interface.
    std::vector<Bytes> onOpen = {};
    // Bytes by which each input report is too long, or too short if negative. Bytes that are added
    // are zeros. Does not apply to the reports above and those that are injected.
    int lengthError = 0;
    // Passes before the device sends a report, but not before one that is injected.
    std::chrono::milliseconds delay{0};

    bool operator==(const DeviceBehaviour&) const = default;
};

} // namespace sim
