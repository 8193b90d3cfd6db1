// The descriptors of a device, byte by byte. Pure.
#pragma once

#include "sim/device/usb_device_info.h"

#include <optional>

namespace sim {

Bytes deviceDescriptor(const UsbDeviceInfo& info);

// With the interface, HID and endpoint descriptors that belong to it.
Bytes configurationDescriptor(const UsbDeviceInfo& info);

Bytes hidDescriptor(const UsbDeviceInfo& info);

// String descriptor `index`; 0 is the list of languages. Nothing for a string
// that the device does not have.
[[nodiscard]] std::optional<Bytes> stringDescriptor(const UsbDeviceInfo& info, uint8_t index);

} // namespace sim
