#include "tools/ctl/usb/device_scan.h"

#include "report/layout.h"
#include "tools/ctl/cli/failure.h"
#include "tools/ctl/usb/collection_pages.h"
#include "tools/ctl/usb/interface_check.h"
#include "tools/ctl/usb/signal_hold.h"
#include "tools/ctl/usb/sysfs.h"

#include <algorithm>

namespace ctl {
namespace {

[[noreturn]] void failWithoutUsb(int error, const std::string& remedy)
{
    throw Failure(kNoAccess,
        std::string("USB cannot be used on this machine: ") + libusb_strerror(error) + remedy);
}

void setDescriptor(DeviceEntry& entry, report::Bytes descriptor)
{
    entry.descriptor = std::move(descriptor);
    entry.pages = collectionPages(entry.descriptor);
    entry.telephony = std::find(entry.pages.begin(), entry.pages.end(), report::kTelephonyPage)
        != entry.pages.end();
}

} // namespace

UsbContext startUsb(const std::string& remedy)
{
    // libusb's thread must not take the signals that are held during a check.
    const SignalHold hold;
    libusb_context* context = nullptr;
    if (const int error = libusb_init(&context))
        failWithoutUsb(error, remedy);
    return UsbContext(context);
}

std::vector<ScannedDevice> scanDevice(libusb_device* device)
{
    libusb_device_descriptor descriptor{};
    (void)libusb_get_device_descriptor(device, &descriptor); // cannot fail
    std::vector<ScannedDevice> found;
    for (HidInterface& interface : hidInterfaces(device)) {
        DeviceEntry entry;
        entry.vendorId = descriptor.idVendor;
        entry.productId = descriptor.idProduct;
        entry.path = interface.path;
        entry.interface = interface.number;
        entry.manufacturer = sysfsAttribute(interface.deviceSys, "manufacturer");
        entry.product = sysfsAttribute(interface.deviceSys, "product");
        entry.serialNumber = sysfsAttribute(interface.deviceSys, "serial");
        entry.firstOfItsIds = found.empty();
        found.push_back({.entry = std::move(entry), .interface = std::move(interface)});
    }
    return found;
}

std::vector<ScannedDevice> scanDevices(libusb_context* context)
{
    libusb_device** list = nullptr;
    const ssize_t count = libusb_get_device_list(context, &list);
    if (count < 0)
        failWithoutUsb(static_cast<int>(count), kDoctorExplains);
    const UsbDeviceList owner(list);
    std::vector<ScannedDevice> all;
    for (libusb_device* const device : std::span(list, static_cast<size_t>(count))) {
        for (ScannedDevice& found : scanDevice(device)) {
            DeviceEntry& entry = found.entry;
            entry.number = all.size() + 1;
            const auto first
                = std::find_if(all.begin(), all.end(), [&](const ScannedDevice& earlier) {
                      return earlier.entry.vendorId == entry.vendorId
                          && earlier.entry.productId == entry.productId;
                  });
            entry.firstOfItsIds = first == all.end();
            found.firstIsOwn
                = first == all.end() || first->interface.deviceSys == found.interface.deviceSys;
            all.push_back(std::move(found));
        }
    }
    return all;
}

void examine(ScannedDevice& device, Detail detail)
{
    DeviceEntry& entry = device.entry;
    const HidInterface& interface = device.interface;
    if (entry.descriptor.empty())
        setDescriptor(entry, sysfsDescriptor(interface.sys));
    const bool unknown = entry.descriptor.empty();
    if (!unknown && detail == Detail::kDescriptor)
        return;
    const bool claims
        = detail != Detail::kUnclaimed && !interface.boot && (unknown || entry.telephony);
    const bool reads = unknown || detail == Detail::kTested;
    InterfaceCheck check = claims ? checkByClaim(interface, reads) : checkNode(interface);
    if (claims && reads && check.access == Access::kOpen)
        device.sent = check.descriptor;
    const bool complete
        = !check.descriptor.empty() && check.descriptor.size() == interface.announcedLength;
    if (unknown || complete)
        setDescriptor(entry, std::move(check.descriptor));
    entry.access = check.access;
    entry.accessText = check.text;
    if (interface.boot && check.access == Access::kOpen) {
        entry.access = Access::kNotTried;
        entry.accessText = "not tried, because a keyboard or mouse would stop working";
    }
}

} // namespace ctl
