// hidapi as the simulator's tests use it.
#pragma once

#include "sim/bus/usb_device.h"

#include <hidapi/hidapi.h>

#include <memory>

struct HidClose {
    void operator()(hid_device* device) const { hid_close(device); }
};
using Hid = std::unique_ptr<hid_device, HidClose>;

inline Hid openHid(const sim::UsbDevice& device)
{
    return Hid(hid_open_path(device.hidPath().c_str()));
}

// The report read; empty if none came in time or the device is gone.
inline sim::Bytes readReport(const Hid& hid)
{
    constexpr int kLimitMs = 10'000;
    sim::Bytes report(64);
    const int size = hid_read_timeout(hid.get(), report.data(), report.size(), kLimitMs);
    report.resize(size < 0 ? 0 : static_cast<size_t>(size));
    return report;
}

inline bool writeReport(const Hid& hid, const sim::Bytes& report)
{
    return hid_write(hid.get(), report.data(), report.size()) == static_cast<int>(report.size());
}
