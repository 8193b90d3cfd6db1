// The devices that can be simulated, by name.
#pragma once

#include "sim/device/usb_device_info.h"

#include <span>
#include <string_view>

namespace sim {

struct Profile {
    std::string_view name;
    std::string_view description; // one line
    UsbDeviceInfo info;
};

// The first is the one to take unless told otherwise.
std::span<const Profile> profiles();

// Null for a name there is not.
[[nodiscard]] const Profile* findProfile(std::string_view name);

} // namespace sim
