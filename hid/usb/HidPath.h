// hidapi's names for HID interfaces.
#pragma once

#include <cstdint>
#include <libusb.h>
#include <string>

namespace KX {

// Whether `path` names interface `number` of `device` in either of hidapi's forms:
// "1-2.3:1.0", bus-port.port...:configuration.interface in decimal (0.12 and later), or
// "0001:0002:00", bus:address:interface in hexadecimal (before that).
[[nodiscard]] bool IsHidPath(const std::string& path, libusb_device* device,
    const libusb_config_descriptor& configuration, uint8_t number);

} // namespace KX
