// The two texts made from an enumerated HID device: its line in the device list, and its id.
#pragma once

#include <QString>

#include <hidapi/hidapi.h>

// "VVVV:PPPP " (four lower-case hexadecimal digits each), then path, manufacturer and product,
// without those that are null. A blank follows the path and the manufacturer. The names are used as
// they are: they may contain line breaks or markup.
QString deviceLine(const hid_device_info& device);

// "0xVVVV-HID-0xPPPP#", the key by which the host selects a device. Devices with the same vendor
// and product id have the same key.
QString deviceId(const hid_device_info& device);
