// hidapi's names for HID interfaces.
#pragma once

#include <cstdint>
#include <libusb.h>
#include <string>

namespace KX {

// Whether `path` names interface `number` of `device` in one of hidapi's two forms:
// - "1-2.3:1.0", bus-port.port...:configuration.interface in decimal, from current versions;
// - "0001:0002:00", bus:address:interface in hexadecimal, from older ones.
[[nodiscard]] bool IsHidPath(const std::string& path, libusb_device* device,
    const libusb_config_descriptor& configuration, uint8_t number);

} // namespace KX
