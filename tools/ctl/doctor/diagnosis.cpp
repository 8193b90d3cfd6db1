#include "tools/ctl/doctor/diagnosis.h"

#include "tools/ctl/cli/failure.h"
#include "tools/ctl/cli/output.h"
#include "tools/ctl/doctor/device_findings.h"
#include "tools/ctl/doctor/system_findings.h"
#include "tools/ctl/usb/device_choice.h"
#include "tools/ctl/usb/device_words.h"

#include <algorithm>

namespace ctl {
namespace {

using Level = Finding::Level;

void addDevice(Diagnosis& diagnosis, ScannedDevice& device)
{
    Output::err().progress("examining " + idsText(device.entry)); // may take some seconds
    examine(device, Detail::kTested);
    diagnosis.devices.push_back({device.entry, deviceFindings(device)});
    Output::err().progress("");
}

// Devices that sysfs shows to have no telephony are left alone.
void addTelephonyDevices(Diagnosis& diagnosis, std::vector<ScannedDevice>& devices)
{
    size_t others = 0;
    for (ScannedDevice& device : devices) {
        examine(device, Detail::kDescriptor);
        if (device.entry.telephony || device.entry.descriptor.empty())
            addDevice(diagnosis, device);
        else
            ++others;
    }
    if (devices.empty())
        diagnosis.system.push_back({Level::kProblem, "no-device", "no HID device is present",
            "plug one in, or simulate one with kelprobe-sim"});
    else if (others > 0)
        diagnosis.system.push_back(
            {diagnosis.devices.empty() ? Level::kProblem : Level::kNote, "other-devices",
                std::to_string(others) + " HID device" + (others > 1 ? "s" : "")
                    + " without telephony controls",
                diagnosis.devices.empty() ? "plug in a telephony device" : ""});
}

} // namespace

bool DeviceDiagnosis::usable() const
{
    return device.telephony && device.access == Access::kOpen && device.firstOfItsIds
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
        context = startUsb("");
    } catch (const Failure& failure) {
        diagnosis.system.push_back({Level::kProblem, "usb", failure.what(), ""});
        return diagnosis;
    }
    std::vector<ScannedDevice> devices = scanDevices(context.get());
    if (choice)
        addDevice(diagnosis, choose(devices, choice));
    else
        addTelephonyDevices(diagnosis, devices);
    return diagnosis;
}

} // namespace ctl
