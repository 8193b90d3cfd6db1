// What the bench says about a device. Pure.
#pragma once

#include "sim/device/panel.h"
#include "sim/profile/profile.h"

namespace Json {
class Value;
}

namespace sim {

// The part of `devices --json` that does not depend on lamps, faults and the bus.
[[nodiscard]] Json::Value deviceJson(
    const Profile& profile, const std::vector<Panel::ButtonState>& buttons);

// "speakerphone  1209:0001  Simulated speakerphone"; printable.
[[nodiscard]] std::string summaryOf(const Profile& profile);

} // namespace sim
