// The USB transfers that a recording stands for. Pure.
#pragma once

#include "report/format/recording.h"

namespace ctl {

// The fields have the meanings that they have on the bus.
struct UsbSetup {
    uint8_t requestType = 0;
    uint8_t request = 0;
    uint16_t value = 0;
    uint16_t index = 0;
    uint16_t length = 0;
};

struct UsbTransfer {
    uint16_t bus = 0;
    uint8_t device = 0;
    uint8_t endpoint = 0;               // with the direction in bit 7
    std::optional<UsbSetup> setup = {}; // of a control transfer; without it, an interrupt transfer
    std::chrono::microseconds time{};   // since 1970
    bool failed = false;
    report::Bytes data; // received or sent

    [[nodiscard]] bool isIn() const { return endpoint & 0x80; }
};

// The transfers in which a host reads the descriptors of a device: of the device, of its
// configuration and of its reports, the last only if it is known. `index` in Recording::devices
// gives the numbers of bus and device. The recording does not have the first two descriptors: they
// say what is known, and that the device has one HID interface with an interrupt endpoint for each
// direction.
[[nodiscard]] std::vector<UsbTransfer> descriptorTransfers(
    const report::RecordedDevice& device, size_t index, std::chrono::microseconds time);

// The transfer of a report. Output reports go to the interrupt endpoint, because the recording does
// not have the endpoints of the device.
[[nodiscard]] UsbTransfer reportTransfer(const report::RecordedReport& report);

} // namespace ctl
