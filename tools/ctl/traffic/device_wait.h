// Waits until a device is plugged in and free.
#pragma once

#include "tools/ctl/cli/stop_signals.h"
#include "tools/ctl/usb/device_list.h"

namespace ctl {

// As chooseDevice(), but says on standard error that the device is not present or that another
// program has it, and waits for it. Tries again when a device is plugged in, and each second. A
// device that cannot be opened for another reason is returned after 2 s: the system may still be
// setting its permissions. No value if a signal arrives. Throws Failure as chooseDevice() does for
// a wrong choice.
[[nodiscard]] std::optional<DeviceEntry> waitForDevice(
    const std::optional<std::string>& choice, const StopSignals& stop);

} // namespace ctl
