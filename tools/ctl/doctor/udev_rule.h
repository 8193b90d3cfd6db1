// The udev rule that lets the user at the machine open telephony devices.
#pragma once

#include "tools/ctl/usb/device_list.h"

#include <filesystem>
#include <span>
#include <string_view>

namespace ctl {

enum class RuleState { kMissing, kDiffers, kInstalled };

// The contents of packaging/70-kelprobe.rules.
[[nodiscard]] std::string_view udevRule();

// Where udev reads rules, the most important directory first: a file hides those of the same name
// in later ones.
[[nodiscard]] std::vector<std::filesystem::path> udevRuleDirectories();

// Whether the rule is in one of the directories. Comments do not count as a difference.
[[nodiscard]] RuleState udevRuleState(std::span<const std::filesystem::path> directories);

// What to do in order to get permission for a device, as lines. `exclusion` is the reason for which
// the rule does not match the device, as "it has no audio"; empty if it does. Otherwise the device
// needs a rule of its own. `directories` as above.
[[nodiscard]] std::string permissionRemedy(const DeviceEntry& entry, std::string_view exclusion,
    std::span<const std::filesystem::path> directories);

} // namespace ctl
