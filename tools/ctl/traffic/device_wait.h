// Waits until a device is plugged in.
#pragma once

#include "tools/ctl/cli/stop_signals.h"
#include "tools/ctl/usb/device_list.h"

namespace ctl {

// As chooseDevice(), but if the device is not present, says so on standard error and waits for it.
// A device that is present and cannot be opened is returned after 2 s: the system may still be
// setting its permissions. No value if a signal arrives. Throws Failure as chooseDevice() does for
// a wrong choice.
[[nodiscard]] std::optional<DeviceEntry> waitForDevice(
    const std::optional<std::string>& choice, const StopSignals& stop);

} // namespace ctl
