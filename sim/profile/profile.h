// A device that can be simulated, with its name.
#pragma once

#include "sim/device/usb_device_info.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace sim {

struct Profile {
    std::string name; // of the built-in profile, or of the file without its folder and ".json"
    std::string description; // one line, printable, or empty
    UsbDeviceInfo info;
};

// A profile or another file with a device cannot be read.
class ProfileError : public std::runtime_error {
public:
    // At least one mistake, each a line: "FILE: KEY: expected ..., found ...". They are made
    // printable, because the names of files have any characters. what() has them all, separated by
    // line ends.
    explicit ProfileError(std::vector<std::string> list);

    const std::vector<std::string> mistakes;
};

} // namespace sim
