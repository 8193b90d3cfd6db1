// The USB descriptors of a device as bytes. Pure.
#pragma once

#include "sim/device/usb_device_info.h"

#include <optional>

namespace sim {

Bytes deviceDescriptor(const UsbDeviceInfo& info);

// The configuration descriptor, followed by its interface, HID and endpoint descriptors.
Bytes configurationDescriptor(const UsbDeviceInfo& info);

Bytes hidDescriptor(const UsbDeviceInfo& info);

// String descriptor `index`; 0 is the list of languages. No value if the device does not have it.
[[nodiscard]] std::optional<Bytes> stringDescriptor(const UsbDeviceInfo& info, uint8_t index);

} // namespace sim
