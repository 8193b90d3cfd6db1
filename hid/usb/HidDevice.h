// hidapi's open, extended by the device's report descriptor, which hidapi 0.13 does not hand out.
//
// hidapi keeps process-wide state without a lock: open and close devices on one thread. Reading
// and writing an open device from two threads at once is fine.
#pragma once

#include "hid/model/Bytes.h"

#include <hidapi/hidapi.h>
#include <memory>
#include <string>

namespace KX {

enum class DescriptorFetch { Off, On };

// An open device; closes it when it goes.
class HidDevice {
public:
    explicit HidDevice(hid_device* opened)
        : handle(opened)
    {
    }
    ~HidDevice() { hid_close(handle); }
    HidDevice(const HidDevice&) = delete;
    HidDevice& operator=(const HidDevice&) = delete;

    hid_device* const handle; // never null; owned
    Bytes reportDescriptor;   // empty when not fetched
};

// The first device of these ids and, unless `serialNumber` is null, of that serial number; null
// when there is none or it cannot be opened.
[[nodiscard]] std::unique_ptr<HidDevice> hid_open(uint16_t vendorId, uint16_t productId,
    const wchar_t* serialNumber, DescriptorFetch fetchDescriptor);

// The device of a path of hidapi's; null when it cannot be opened. With DescriptorFetch::On the
// report descriptor is read first, which can take up to 20 s with a device that does not answer.
// A device whose descriptor cannot be read opens all the same.
[[nodiscard]] std::unique_ptr<HidDevice> hid_open_path(
    const char* path, DescriptorFetch fetchDescriptor);

// Copies the fetched descriptor; false, and `out` as before, when there is none.
[[nodiscard]] bool hid_get_report_descriptor_copy(const HidDevice* device, Bytes& out);

} // namespace KX
