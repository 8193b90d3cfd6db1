// hidapi's devices, with access to the report descriptor, which hidapi before 0.14 does not offer.
//
// hidapi keeps process-wide state without a lock: only one thread may call the functions and the
// destructor. One thread may read an open device while another writes to it.
#pragma once

#include "hid/model/Bytes.h"

#include <memory>
#include <span>

struct hid_device_; // hidapi's handle

namespace KX {

enum class DescriptorFetch { Off, On };

struct CloseHidHandle {
    void operator()(hid_device_* handle) const;
};
using HidHandle = std::unique_ptr<hid_device_, CloseHidHandle>;

// An open device. The destructor closes it and gives the interface back to the kernel driver.
class HidDevice {
public:
    // Takes over `handle`, which must not be null. Use hid_open() or hid_open_path().
    HidDevice(HidHandle handle, Bytes reportDescriptor);
    ~HidDevice();
    HidDevice(const HidDevice&) = delete;
    HidDevice& operator=(const HidDevice&) = delete;

    // Waits at most `timeoutMs` for an input report. Returns its length in bytes, 0 when none came,
    // or a negative number when reading failed. A longer report is cut to the buffer. An unplugged
    // device fails at once.
    [[nodiscard]] int Read(std::span<uint8_t> buffer, int timeoutMs);

    // Sends an output report, report id first. Blocks until the device has taken it, for at most 1
    // s. Returns whether it was taken.
    [[nodiscard]] bool Write(std::span<const uint8_t> report);

    // Empty when it was not fetched or could not be read.
    [[nodiscard]] const Bytes& ReportDescriptor() const { return reportDescriptor_; }

private:
    const HidHandle handle_;
    const Bytes reportDescriptor_;
};

// Opens the first device with these ids and, unless `serialNumber` is null, this serial number.
// Null when there is none or it cannot be opened.
//
// First hidapi reads the three name strings of every interface with these ids. It waits at most 1 s
// for each transfer, and a string takes up to three transfers.
[[nodiscard]] std::unique_ptr<HidDevice> hid_open(uint16_t vendorId, uint16_t productId,
    const wchar_t* serialNumber, DescriptorFetch fetchDescriptor);

// Opens the device with this path from hidapi's enumeration. Null when it cannot be opened.
// DescriptorFetch::On reads the report descriptor first, see RetrieveReportDescriptor(). A device
// whose descriptor cannot be read is opened, too.
[[nodiscard]] std::unique_ptr<HidDevice> hid_open_path(
    const char* path, DescriptorFetch fetchDescriptor);

// Copies the fetched descriptor. False, with `out` unchanged, when `device` is null or has none.
[[nodiscard]] bool hid_get_report_descriptor_copy(const HidDevice* device, Bytes& out);

// Frees hidapi's process-wide state. No HidDevice may be open in the process. May be repeated.
void hid_exit();

} // namespace KX
