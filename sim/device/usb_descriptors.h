// The USB descriptors of a device as bytes. Pure.
#pragma once

#include "sim/device/usb_device_info.h"

#include <optional>

namespace sim {

struct Descriptor {
    enum Type : uint8_t {
        kDevice = 1,
        kConfiguration,
        kString,
        kInterface,
        kEndpoint,
        kHid = 0x21
    };
};

Bytes deviceDescriptor(const UsbDeviceInfo& info);

// The address of the IN endpoint.
constexpr uint8_t inAddress(const InterfaceInfo& interface)
{
    return static_cast<uint8_t>(0x80 | interface.inEndpoint);
}

// The configuration descriptor, followed by the interface, HID and endpoint descriptors of each
// interface.
Bytes configurationDescriptor(const UsbDeviceInfo& info);

Bytes hidDescriptor(const InterfaceInfo& interface);

// String descriptor `index`; 0 is the list of languages. No value if the device does not have it.
[[nodiscard]] std::optional<Bytes> stringDescriptor(const UsbDeviceInfo& info, uint8_t index);

} // namespace sim
