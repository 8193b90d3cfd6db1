#include "tools/ctl/traffic/device_wait.h"

#include "tools/ctl/cli/failure.h"
#include "tools/ctl/cli/output.h"
#include "tools/ctl/usb/device_scan.h"
#include "tools/ctl/usb/hotplug.h"

#include <chrono>
#include <utility>

namespace ctl {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kSettleTime{2};
constexpr int kRetryMs = 100;

std::optional<DeviceEntry> findDevice(const std::optional<std::string>& choice)
{
    try {
        return chooseDevice(choice);
    } catch (const Failure& failure) {
        if (failure.status != kNoAccess)
            throw;
        return std::nullopt;
    }
}

} // namespace

std::optional<DeviceEntry> waitForDevice(
    const std::optional<std::string>& choice, const StopSignals& stop)
{
    const UsbContext context = startUsb();
    Hotplug hotplug(context.get()); // first, so that no device is plugged in unnoticed
    pollfd signal{stop.fd(), POLLIN, 0};
    // One that is leaving or has just come is in the list, but cannot be opened.
    Clock::time_point settled = Clock::now() + kSettleTime;
    bool announced = false;
    while (!stop.stopped()) {
        const bool settling = Clock::now() < settled;
        std::optional<DeviceEntry> entry = findDevice(choice);
        if (entry && (entry->access == Access::kOpen || !settling))
            return entry;
        if (!std::exchange(announced, true))
            Output::err().line("Waiting for the device. Ctrl-C ends.");
        hotplug.wait({&signal, 1}, settling ? kRetryMs : -1);
        if (!hotplug.take().empty())
            settled = Clock::now() + kSettleTime;
    }
    return std::nullopt;
}

} // namespace ctl
