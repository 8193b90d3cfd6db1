#include "tools/ctl/traffic/device_wait.h"

#include "tools/ctl/cli/failure.h"
#include "tools/ctl/cli/output.h"
#include "tools/ctl/usb/device_scan.h"
#include "tools/ctl/usb/device_words.h"
#include "tools/ctl/usb/hotplug.h"

#include <chrono>
#include <utility>

namespace ctl {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kSettleTime{2};
constexpr int kSettlingMs = 100; // between two tries
constexpr int kSettledMs = 1000; // no message says that a program has freed a device

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
    bool explained = false;
    while (!stop.stopped()) {
        const bool settling = Clock::now() < settled;
        std::optional<DeviceEntry> entry = findDevice(choice);
        const bool busy = entry && entry->access == Access::kBusy;
        if (entry && (entry->access == Access::kOpen || (!settling && !busy)))
            return entry;
        if (!std::exchange(announced, true))
            Output::err().line("Waiting for the device. Ctrl-C ends.");
        if (busy && !settling && !std::exchange(explained, true))
            Output::err().line(idsText(*entry) + ": " + entry->accessText);
        hotplug.wait({&signal, 1}, settling ? kSettlingMs : kSettledMs);
        if (!hotplug.take().empty())
            settled = Clock::now() + kSettleTime;
    }
    return std::nullopt;
}

} // namespace ctl
