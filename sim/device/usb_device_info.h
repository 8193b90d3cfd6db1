// What a host can read of a simulated USB device.
#pragma once

#include "sim/device/device_behaviour.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim {

// One entry of the class descriptor list inside the HID descriptor.
struct ClassDescriptor {
    static constexpr uint8_t kReport = 0x22;
    static constexpr uint8_t kPhysical = 0x23;

    uint8_t type = kReport;
    uint16_t length = 0; // in bytes

    bool operator==(const ClassDescriptor&) const = default;
};

// An interface of class HID, which the kernel's HID driver has until a program detaches it, or of
// another class, which has neither a driver nor endpoints.
struct InterfaceInfo {
    static constexpr uint8_t kHid = 3;      // interface class
    static constexpr uint8_t kBoot = 1;     // subclass of keyboards and mice
    static constexpr uint8_t kNumbers = 32; // libusb takes interface numbers below this

    uint8_t number = 0; // differs from those of the device's other interfaces
    uint8_t interfaceClass = kHid;
    uint8_t subclass = 0;
    uint8_t protocol = 0;

    // The rest belongs to the class HID.
    Bytes reportDescriptor = {};
    // What the HID descriptor lists. Absent: the report descriptor alone.
    std::optional<std::vector<ClassDescriptor>> classDescriptors = std::nullopt;
    // Endpoint numbers, 1 to 15, that differ from those of the same direction of the device's other
    // interfaces. Without an OUT endpoint (0) the host sends output reports by SET_REPORT.
    uint8_t inEndpoint = 1;
    uint8_t outEndpoint = 1;
    uint16_t maxPacketSize = 64; // bytes

    [[nodiscard]] bool isHid() const { return interfaceClass == kHid; }

    bool operator==(const InterfaceInfo&) const = default;
};

enum class UsbSpeed { kLow, kFull, kHigh };

// A device with one configuration.
struct UsbDeviceInfo {
    static constexpr size_t kMaxStringUnits = 126; // a descriptor gives its length in one byte

    uint16_t vendorId = 0;
    uint16_t productId = 0;
    // In UTF-16, not always valid. The device has no descriptor for an empty string. At most
    // kMaxStringUnits are sent.
    std::u16string manufacturer = {};
    std::u16string product = {};
    std::u16string serialNumber = {};
    uint16_t release = 0x0100; // bcdDevice: 1.00
    UsbSpeed speed = UsbSpeed::kFull;

    std::vector<InterfaceInfo> interfaces = {InterfaceInfo{}}; // at least one
    DeviceBehaviour behaviour = {};

    // Index of the interface whose controls the device's panel has. Without a value it is the first
    // one whose report descriptor has a telephony collection, else the first of class HID, else the
    // first.
    std::optional<size_t> chosenControls = {};

    // That interface. Reads the descriptors each time.
    [[nodiscard]] InterfaceInfo& controls() { return interfaces[controlsIndex()]; }
    [[nodiscard]] const InterfaceInfo& controls() const { return interfaces[controlsIndex()]; }

    bool operator==(const UsbDeviceInfo&) const = default;

private:
    [[nodiscard]] size_t controlsIndex() const;
};

} // namespace sim
