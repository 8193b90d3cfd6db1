#include "tools/ctl/usb/diagnosis.h"

#include "tools/ctl/cli/command.h"
#include "tools/ctl/usb/device_choice.h"
#include "tools/ctl/usb/device_findings.h"
#include "tools/ctl/usb/system_findings.h"

#include <algorithm>
#include <chrono>

namespace ctl {
namespace {

using Level = Finding::Level;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kSlow{1}; // one transfer without a response

void addDevice(Diagnosis& diagnosis, const DeviceScan& scan, DeviceEntry& entry)
{
    const auto interface = scan.interfaceOf(entry);
    scan.complete(entry, Detail::kDescriptorAndAccess);
    diagnosis.devices.push_back(
        {entry, interface ? deviceFindings(entry, *interface) : goneFindings()});
}

// Devices that sysfs shows to have no telephony are left alone.
void addTelephonyDevices(Diagnosis& diagnosis, DeviceScan& scan)
{
    size_t others = 0;
    for (DeviceEntry& entry : scan.entries()) {
        scan.complete(entry, Detail::kDescriptor);
        if (entry.telephony || entry.descriptor.empty())
            addDevice(diagnosis, scan, entry);
        else
            ++others;
    }
    if (scan.entries().empty())
        diagnosis.system.push_back({Level::kProblem, "no-device", "no HID device is present",
            "plug one in, or simulate one with kelprobe-sim"});
    else if (others > 0)
        diagnosis.system.push_back(
            {diagnosis.devices.empty() ? Level::kProblem : Level::kNote, "other-devices",
                std::to_string(others) + " HID device" + (others > 1 ? "s" : "")
                    + " without telephony controls",
                diagnosis.devices.empty() ? "plug in a telephony device" : ""});
}

void addSlowness(Diagnosis& diagnosis, Clock::duration duration)
{
    if (duration < kSlow)
        return;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration).count();
    diagnosis.system.push_back({Level::kNote, "slow",
        "reading the names of all devices took " + std::to_string(seconds)
            + " s, because a device does not respond; the window takes as long",
        "unplug the devices one by one to find it"});
}

} // namespace

bool DeviceDiagnosis::usable() const
{
    return device.telephony && device.access == Access::kOpen
        && std::none_of(findings.begin(), findings.end(),
            [](const Finding& finding) { return finding.level == Level::kProblem; });
}

bool Diagnosis::usable() const
{
    return std::any_of(devices.begin(), devices.end(),
        [](const DeviceDiagnosis& device) { return device.usable(); });
}

Diagnosis diagnose(const std::optional<std::string>& choice)
{
    Diagnosis diagnosis;
    diagnosis.system = systemFindings();
    UsbContext context;
    try {
        context = startUsb();
    } catch (const Failure& failure) {
        diagnosis.system.push_back({Level::kProblem, "usb", failure.what(), ""});
        return diagnosis;
    }
    const auto start = Clock::now();
    DeviceScan scan(context.get());
    addSlowness(diagnosis, Clock::now() - start);
    if (choice)
        addDevice(diagnosis, scan, chooseEntry(scan, choice));
    else
        addTelephonyDevices(diagnosis, scan);
    return diagnosis;
}

} // namespace ctl
