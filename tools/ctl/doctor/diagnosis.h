// All findings of `kelprobectl doctor`.
#pragma once

#include "tools/ctl/doctor/finding.h"
#include "tools/ctl/usb/device_list.h"

namespace ctl {

struct DeviceDiagnosis {
    DeviceEntry device;
    Findings findings;

    // Whether it is a telephony device that Kelprobe can use.
    [[nodiscard]] bool usable() const;
};

struct Diagnosis {
    Findings system;
    std::vector<DeviceDiagnosis> devices;

    // Whether Kelprobe can use at least one of the devices.
    [[nodiscard]] bool usable() const;
};

// Looks at the chosen device, or at all that are or may be telephony devices. Throws Failure if the
// choice is of no device.
[[nodiscard]] Diagnosis diagnose(const std::optional<std::string>& choice);

} // namespace ctl
