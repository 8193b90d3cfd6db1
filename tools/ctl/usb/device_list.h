// The machine's HID devices as `kelprobectl list` shows them, and the choice of one of them.
#pragma once

#include "report/bytes.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace ctl {

// Whether this user can open an interface.
enum class Access {
    kOpen,
    kNoPermission, // the device node cannot be opened
    kBusy,         // another program has claimed the interface
    kOtherError,
    kNotTried, // a keyboard or mouse, which is not taken from the kernel's driver
};

struct DeviceEntry {
    size_t number = 0; // from 1, in hidapi's order
    uint16_t vendorId = 0;
    uint16_t productId = 0;
    std::string path;         // hidapi's
    std::string manufacturer; // as the kernel has read it; pass it to printable() before printing
    std::string product;      // the same
    std::string serialNumber; // the same
    int interface = 0;
    report::Bytes descriptor;    // empty if it could not be read
    std::vector<uint16_t> pages; // usage pages of the top-level collections, each once
    bool telephony = false;      // has a top-level collection of the Telephony page
    Access access = Access::kNotTried;
    std::string accessText;    // the reason in words, and the remedy; empty for kOpen
    bool firstOfItsIds = true; // the stack opens only the first device of equal ids
};

// The HID interfaces of all devices. Opens each node, but claims nothing: the descriptor is empty
// unless the kernel's HID driver has the interface. Blocks for less than a millisecond per device.
// Throws Failure if USB cannot be used.
[[nodiscard]] std::vector<DeviceEntry> listDevices();

// The device that the user means: "vvvv:pppp" (the first with these ids, as in the window), a path
// or a number of the list. Without a choice it is the only telephony device. Claims the chosen
// interface and gives it back, which also finds the descriptor if it is not in sysfs. Without a
// choice claims others whose descriptor is not in sysfs, but never a keyboard or mouse. Blocks for
// seconds if a claimed device does not respond. Throws Failure (kNoAccess: there is none;
// kWrongUse: the choice is malformed or does not decide), with a text that lists the devices and
// how to choose.
[[nodiscard]] DeviceEntry chooseDevice(const std::optional<std::string>& choice);

// Whether `text` has the form of a device choice. Others may be names of files.
[[nodiscard]] bool isDeviceChoice(const std::string& text);

} // namespace ctl
