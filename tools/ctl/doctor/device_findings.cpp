#include "tools/ctl/doctor/device_findings.h"

#include "tools/ctl/doctor/node_users.h"
#include "tools/ctl/doctor/udev_rule.h"
#include "tools/ctl/usb/sysfs.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <unistd.h>
#include <utility>

namespace ctl {
namespace {

using Level = Finding::Level;

std::string joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

Finding busy(const HidInterface& interface)
{
    const std::vector<std::string> users = usersOfNode(interface.node);
    if (users.empty())
        return {Level::kProblem, "busy", "another program has the interface",
            geteuid() == 0 ? "none has the device open; plug it in again"
                           : "close that program; as root, this command shows its name"};
    return {Level::kProblem, "busy", "another program has the interface",
        "close it; these have the device open: " + joined(users)};
}

// Interfaces with which the udev rule does not match a device, as ID_USB_INTERFACES in it.
struct Exclusion {
    uint8_t interfaceClass;
    std::optional<uint8_t> subclass; // any without a value
    std::optional<uint8_t> protocol;
    std::string_view reason;
};

constexpr uint8_t kBootSubclass = 1;
constexpr uint8_t kKeyboardProtocol = 1;
constexpr uint8_t kMouseProtocol = 2;
constexpr uint8_t kRadioSubclass = 1;

constexpr Exclusion kExclusions[] = {
    {LIBUSB_CLASS_HID, kBootSubclass, {}, "it is also a keyboard or mouse"},
    {LIBUSB_CLASS_HID, {}, kKeyboardProtocol, "it is also a keyboard"},
    {LIBUSB_CLASS_HID, {}, kMouseProtocol, "it is also a mouse"},
    {LIBUSB_CLASS_MASS_STORAGE, {}, {}, "it is also a disk"},
    {LIBUSB_CLASS_SMART_CARD, {}, {}, "it is also a smart card reader"},
    {LIBUSB_CLASS_WIRELESS, kRadioSubclass, {}, "it is also a Bluetooth radio"},
};

bool matches(const Exclusion& exclusion, const libusb_interface_descriptor& interface)
{
    return interface.bInterfaceClass == exclusion.interfaceClass
        && interface.bInterfaceSubClass == exclusion.subclass.value_or(interface.bInterfaceSubClass)
        && interface.bInterfaceProtocol
        == exclusion.protocol.value_or(interface.bInterfaceProtocol);
}

// Why the udev rule does not match a device with a HID interface; empty if it does.
std::string_view exclusionFromUdevRule(libusb_device* device)
{
    const auto hasAudio = [](const libusb_interface_descriptor& interface) {
        return interface.bInterfaceClass == LIBUSB_CLASS_AUDIO;
    };
    if (!hasInterface(device, hasAudio))
        return "it has no audio";
    for (const Exclusion& exclusion : kExclusions)
        if (hasInterface(device, std::bind_front(matches, exclusion)))
            return exclusion.reason;
    return "";
}

Finding access(const DeviceEntry& entry, const HidInterface& interface)
{
    switch (entry.access) {
    case Access::kOpen:
        return {Level::kFine, "open", "this user can open it", ""};
    case Access::kNotTried:
        return {Level::kNote, "not-tried",
            "it is a keyboard or mouse, which would stop working while Kelprobe has it open", ""};
    case Access::kNoPermission:
        return {Level::kProblem, "no-permission", "no permission to open " + interface.node,
            permissionRemedy(
                entry, exclusionFromUdevRule(interface.device.get()), udevRuleDirectories())};
    case Access::kBusy:
        return busy(interface);
    case Access::kOtherError:
        break;
    }
    return {Level::kProblem, "open-fails", entry.accessText, ""};
}

void addTelephony(Findings& findings, const DeviceEntry& entry)
{
    if (!entry.descriptor.empty() && !entry.telephony)
        findings.push_back({Level::kProblem, "no-telephony",
            "it has no telephony collection, so Kelprobe finds no controls in it", ""});
}

// The stack asks the device, so sysfs does not help.
void addDescriptor(Findings& findings, const ScannedDevice& device)
{
    if (!device.sent)
        return;
    const size_t size = device.sent->size();
    const size_t announced = device.interface.announcedLength;
    if (size == 0)
        findings.push_back({Level::kProblem, "no-descriptor",
            "it does not return its report descriptor", "plug it in again"});
    else if (size < announced)
        findings.push_back({Level::kProblem, "no-descriptor",
            "it returns only " + std::to_string(size) + " of " + std::to_string(announced)
                + " bytes of its report descriptor",
            "plug it in again"});
    else if (const auto shown = sysfsDescriptor(device.interface.sys);
             !shown.empty() && shown != *device.sent)
        findings.push_back({Level::kNote, "other-descriptor",
            "the kernel shows another report descriptor than the device returns; Kelprobe uses "
            "that of the device",
            ""});
}

void addDriver(Findings& findings, const DeviceEntry& entry, const HidInterface& interface)
{
    if (entry.access != Access::kOpen || !entry.telephony)
        return;
    if (!sysfsDescriptor(interface.sys).empty())
        findings.push_back({Level::kNote, "driver",
            "while Kelprobe has it open, the kernel's driver is detached: volume keys and other "
            "keys of the device have no effect",
            ""});
    else
        findings.push_back({Level::kNote, "no-driver",
            "the kernel's driver does not have the interface, so volume keys have no effect",
            "plug it in again"});
}

// A hidraw node is what other programs use, and often what users have made accessible.
void addHidraw(Findings& findings, const DeviceEntry& entry, const HidInterface& interface)
{
    if (entry.access != Access::kNoPermission)
        return;
    for (const std::string& name : hidrawNames(interface.sys)) {
        const std::string node = "/dev/" + name;
        if (::access(node.c_str(), R_OK | W_OK) == 0)
            findings.push_back({Level::kNote, "hidraw",
                "this user can open " + node
                    + ", but that does not help: Kelprobe uses libusb, which opens "
                    + interface.node,
                ""});
    }
}

void addSameIds(Findings& findings, const ScannedDevice& device)
{
    if (device.entry.firstOfItsIds)
        return;
    if (device.firstIsOwn)
        findings.push_back({Level::kProblem, "same-ids",
            "another interface of this device comes first; Kelprobe opens only that one", ""});
    else
        findings.push_back({Level::kProblem, "same-ids",
            "another device with the same ids comes first; Kelprobe opens only that one",
            "plug in only one of several equal devices"});
}

// Why a string cannot be read, or nothing. Waits for the device for at most 2 s.
std::string nameProblem(libusb_device_handle* handle, uint8_t index)
{
    std::array<unsigned char, 256> text{};
    const int result = libusb_get_string_descriptor_ascii(
        handle, index, text.data(), static_cast<int>(text.size()));
    if (result == LIBUSB_ERROR_TIMEOUT)
        return "it does not respond; the window waits for it, too";
    return result < 0 ? libusb_strerror(result) : "";
}

void addNames(Findings& findings, const DeviceEntry& entry, const HidInterface& interface)
{
    libusb_device_handle* opened = nullptr;
    if (entry.access == Access::kNoPermission
        || libusb_open(interface.device.get(), &opened) != LIBUSB_SUCCESS)
        return;
    const UsbDeviceHandle handle(opened);
    libusb_device_descriptor descriptor{};
    (void)libusb_get_device_descriptor(interface.device.get(), &descriptor); // cannot fail
    for (const auto& [index, what] : {std::pair{descriptor.iManufacturer, "manufacturer"},
             {descriptor.iProduct, "product"}, {descriptor.iSerialNumber, "serial number"}}) {
        const std::string problem = index ? nameProblem(opened, index) : "";
        if (!problem.empty())
            findings.push_back({Level::kNote, "no-name",
                std::string("its ") + what + " cannot be read: " + problem, ""});
    }
}

} // namespace

Findings deviceFindings(const ScannedDevice& device)
{
    const DeviceEntry& entry = device.entry;
    const HidInterface& interface = device.interface;
    Findings findings = {access(entry, interface)};
    addTelephony(findings, entry);
    addDescriptor(findings, device);
    addDriver(findings, entry, interface);
    addHidraw(findings, entry, interface);
    addSameIds(findings, device);
    addNames(findings, entry, interface);
    return findings;
}

} // namespace ctl
