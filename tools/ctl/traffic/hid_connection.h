// A device that a command has opened, with the reasons of failures.
#pragma once

#include "tools/ctl/cli/failure.h"
#include "tools/ctl/usb/device_list.h"
#include "tools/ctl/usb/usb_handles.h"

#include <span>

namespace ctl {

// The device was unplugged.
class DeviceGone : public Failure {
public:
    explicit DeviceGone(const std::string& what)
        : Failure(kNoAccess, what)
    {
    }
};

// Observes this process's calls to hidapi. The destructor closes the device, which gives the
// interface back to the kernel's driver.
class HidConnection {
public:
    // Throws Failure with the reason if the device cannot be opened, DeviceGone.
    explicit HidConnection(const DeviceEntry& entry);

    // Waits for an input report for at most that long; empty if none came. The bytes are valid
    // until the next call. hidapi keeps the 30 newest reports. Throws DeviceGone. For one thread,
    // while another may send.
    [[nodiscard]] std::span<const uint8_t> read(int milliseconds);

    // Send a report, report id first, 0 if the device uses none. Block until the device has taken
    // it, for at most 1 s. Throw Failure (kFellShort) with the reason, DeviceGone.
    void write(std::span<const uint8_t> report);
    void sendFeature(std::span<const uint8_t> report);

private:
    [[noreturn]] void fail() const;
    [[noreturn]] void failGone() const;

    const std::string name_; // for messages
    report::Bytes buffer_;
    std::unique_ptr<hid_device, Release<hid_close>> device_;
};

} // namespace ctl
