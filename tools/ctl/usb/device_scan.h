// One look at the machine's HID devices.
//
// Does not use hidapi's enumeration, which opens each device and asks it for its names: that is
// slow, and a device that does not respond blocks it for seconds. The kernel has read the names
// when the device was plugged in.
#pragma once

#include "tools/ctl/usb/device_list.h"
#include "tools/ctl/usb/hid_interface.h"

namespace ctl {

constexpr const char* kDoctorExplains = "; kelprobectl doctor explains more";

// Throws Failure if USB cannot be used. Its text ends with the remedy.
[[nodiscard]] UsbContext startUsb(const std::string& remedy = kDoctorExplains);

// An interface with what is known without opening it: ids, path and names.
struct ScannedDevice {
    DeviceEntry entry;
    HidInterface interface;
    bool firstIsOwn = false;                // the first interface of these ids is of this device
    std::optional<report::Bytes> sent = {}; // the descriptor that the device returned when asked
};

// The HID interfaces of one device, numbered from 0.
[[nodiscard]] std::vector<ScannedDevice> scanDevice(libusb_device* device);

// Those of all devices, in hidapi's order and numbered from 1. Throws Failure.
[[nodiscard]] std::vector<ScannedDevice> scanDevices(libusb_context* context);

enum class Detail {
    kUnclaimed,  // the descriptor if it is in sysfs, and the access as far as it can be seen
    kDescriptor, // the descriptor; claims the interface if it is not in sysfs
    kClaimed,    // descriptor and access; claims a telephony interface and those that may be one
    kTested,     // the same, but the descriptor of a claimed interface is the one that it returns
};

// Adds the descriptor and the access. The interface of a keyboard or mouse is never claimed. Also
// takes a device that was unplugged meanwhile.
void examine(ScannedDevice& device, Detail detail);

} // namespace ctl
