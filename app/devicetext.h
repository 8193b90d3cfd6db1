// The two texts made of an enumerated HID device: what the user chooses from, and the id.
#pragma once

#include <QString>

#include <hidapi/hidapi.h>

// "VVVV:PPPP " (four lower-case hexadecimal digits each), then path, manufacturer and product as
// far as they are known; path and manufacturer are followed by a blank.
QString deviceLine(const hid_device_info& device);

// "0xVVVV-HID-0xPPPP#", the key that the host selects by. Devices of one vendor and product share
// it.
QString deviceId(const hid_device_info& device);
