#include "tools/ctl/usb/device_watch.h"

#include "tools/ctl/cli/failure.h"
#include "tools/ctl/usb/interface_check.h"
#include "tools/ctl/usb/sysfs.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace ctl {
namespace {

using namespace std::chrono_literals;

constexpr auto kTimeToSettle = 1500ms;
constexpr int kRetryMs = 50;

// Whether the kernel's driver has the interface, without which its report descriptor is unknown,
// and this user may open it.
bool isSettled(const HidInterface& interface)
{
    return !sysfsDescriptor(interface.sys).empty()
        && checkNode(interface).access != Access::kNoPermission;
}

} // namespace

DeviceWatch::DeviceWatch(const StopSignals& stop, Callback callback)
    : stop_(stop)
    , callback_(std::move(callback))
{
}

void DeviceWatch::run()
{
    const UsbContext context = startUsb();
    Hotplug hotplug(context.get()); // before the first list, so that nothing is missed
    reportPresent(context.get());
    std::array<pollfd, 2> others{{{stop_.fd(), POLLIN, 0}, {STDOUT_FILENO, 0, 0}}};
    while (!stop_.stopped()) {
        hotplug.wait(others, new_.empty() ? -1 : kRetryMs);
        if (others[1].revents != 0 && !stop_.stopped())
            throw Failure(kNoAccess, "standard output: " + std::generic_category().message(EPIPE));
        for (Hotplug::Event& event : hotplug.take())
            handle(std::move(event));
        reportReady();
    }
}

DeviceWatch::Key DeviceWatch::keyOf(libusb_device* device)
{
    return {libusb_get_bus_number(device), libusb_get_device_address(device)};
}

void DeviceWatch::reportPresent(libusb_context* context)
{
    for (ScannedDevice& device : scanDevices(context))
        report(Change::kPresent, device);
}

void DeviceWatch::report(Change change, ScannedDevice& device)
{
    examine(device, Detail::kUnclaimed);
    callback_(change, device.entry);
    reported_[keyOf(device.interface.device.get())].push_back(device.entry);
}

void DeviceWatch::handle(Hotplug::Event event)
{
    libusb_device* const device = event.device.get();
    if (!event.arrived)
        remove(device);
    else if (!reported_.contains(keyOf(device)) && !hidInterfaces(device).empty())
        new_.push_back({std::move(event.device), Clock::now() + kTimeToSettle});
}

void DeviceWatch::remove(libusb_device* device)
{
    std::erase_if(
        new_, [&](const NewDevice& added) { return keyOf(added.device.get()) == keyOf(device); });
    const auto found = reported_.find(keyOf(device));
    if (found == reported_.end())
        return;
    for (const DeviceEntry& entry : found->second)
        callback_(Change::kRemoved, entry);
    reported_.erase(found);
}

void DeviceWatch::reportReady()
{
    const auto ready = std::stable_partition(new_.begin(), new_.end(), [](const NewDevice& added) {
        const auto interfaces = hidInterfaces(added.device.get());
        return Clock::now() < added.deadline
            && !std::all_of(interfaces.begin(), interfaces.end(), isSettled);
    });
    for (auto added = ready; added != new_.end(); ++added) {
        for (ScannedDevice& device : scanDevice(added->device.get()))
            report(Change::kAdded, device);
    }
    new_.erase(ready, new_.end());
}

} // namespace ctl
