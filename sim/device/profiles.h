// The devices that can be simulated, by name.
#pragma once

#include "sim/device/usb_device_info.h"

#include <filesystem>
#include <span>
#include <string_view>

namespace sim {

struct Profile {
    std::string_view name;
    std::string_view description; // one line
    UsbDeviceInfo info;
};

// Where the profiles' report descriptors are: the directory that the environment variable
// KELPROBE_PROFILES names, else the installed one ("../share/kelprobe/profiles" from the directory
// of the running program) if there is one, else the one in the source tree.
std::filesystem::path profileDirectory();

// All profiles; the first is the default. The first call reads the descriptors and throws
// std::runtime_error if one cannot be read; what() names the file and the fault.
std::span<const Profile> profiles();

// Null if there is no profile of that name. Throws as profiles() does.
[[nodiscard]] const Profile* findProfile(std::string_view name);

} // namespace sim
