// What is done to the device by hand.
#pragma once

#include "tools/ctl/explain/control.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace ctl {

enum class Action : uint8_t { kHook, kMute, kFlash, kBusy, kUnplug, kReplug };

struct ActionName {
    std::string_view word;    // argument of a press command
    std::string_view request; // to a person
    std::string_view control; // that is pressed, for sentences; empty for others
};

// In the order of Action.
inline constexpr std::array<ActionName, 6> kActionNames{{
    {"hook", "Press the hook switch", "hook switch"},
    {"mute", "Press the mute button", "mute button"},
    {"flash", "Press the flash button", "flash button"},
    {"busy", "Press the reject button", "reject button"},
    {"unplug", "Unplug the device", ""},
    {"replug", "Plug the device in again", ""},
}};

constexpr const ActionName& nameOf(Action action)
{
    return kActionNames[static_cast<size_t>(action)];
}

// Of a press.
constexpr ControlId controlOf(Action press)
{
    constexpr std::array<ControlId, 4> controls{
        ControlId::kHookSwitch, ControlId::kPhoneMute, ControlId::kFlash, ControlId::kLineBusy};
    return controls[static_cast<size_t>(press)];
}

} // namespace ctl
