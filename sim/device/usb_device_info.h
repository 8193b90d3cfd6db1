// What a host can read of a simulated USB HID device.
#pragma once

#include "sim/device/wire_bytes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim {

constexpr uint8_t kHidInterfaceClass = 3;
constexpr uint8_t kEndpointIn = 0x81;
constexpr uint8_t kEndpointOut = 0x02;

// One entry of the class descriptor list inside the HID descriptor.
struct ClassDescriptor {
    static constexpr uint8_t kReport = 0x22;
    static constexpr uint8_t kPhysical = 0x23;

    uint8_t type = kReport;
    uint16_t length = 0; // in bytes
};

// A device with one configuration and one interface.
struct UsbDeviceInfo {
    uint16_t vendorId = 0;
    uint16_t productId = 0;
    // The device has no descriptor for an empty string. At most 126 units are sent.
    std::u16string manufacturer;
    std::u16string product;
    std::u16string serialNumber;

    Bytes reportDescriptor;
    // What the HID descriptor lists. Absent: the report descriptor alone.
    std::optional<std::vector<ClassDescriptor>> classDescriptors = std::nullopt;

    uint8_t interfaceNumber = 0;
    uint8_t interfaceClass = kHidInterfaceClass;
    bool boot = false; // of the boot subclass, as keyboards and mice are
    // Without an OUT endpoint the host sends output reports by SET_REPORT.
    bool hasOutEndpoint = true;
    uint16_t maxPacketSize = 64;
};

} // namespace sim
