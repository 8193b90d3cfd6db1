// The udev rule that lets the user at the machine open telephony devices.
#pragma once

#include "tools/ctl/usb/device_list.h"
#include "tools/ctl/usb/hid_interface.h"

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

// Whether the rule covers the device: it has audio and HID interfaces.
[[nodiscard]] bool udevRuleCovers(libusb_device* device);

// What to do in order to get permission for a device, as lines. `covered`: by the rule.
[[nodiscard]] std::string permissionRemedy(const DeviceEntry& entry, bool covered, RuleState state);

} // namespace ctl
