#include "tools/ctl/usb/device_scan.h"

#include "tools/ctl/cli/command.h"
#include "tools/ctl/usb/collection_pages.h"
#include "tools/ctl/usb/signal_hold.h"
#include "tools/ctl/usb/sysfs.h"
#include "tools/ctl/usb/wide_text.h"

#include <algorithm>

namespace ctl {
namespace {

[[noreturn]] void failWithoutUsb(const char* reason)
{
    throw Failure(kNoAccess,
        std::string("USB cannot be used on this machine: ") + reason
            + "; kelprobectl doctor explains more");
}

bool sameIds(const DeviceEntry& one, const DeviceEntry& other)
{
    return one.vendorId == other.vendorId && one.productId == other.productId;
}

void setDescriptor(DeviceEntry& entry, report::Bytes descriptor)
{
    entry.descriptor = std::move(descriptor);
    entry.pages = collectionPages(entry.descriptor);
    entry.telephony
        = std::find(entry.pages.begin(), entry.pages.end(), kTelephonyPage) != entry.pages.end();
}

void setAccess(DeviceEntry& entry, const InterfaceCheck& check)
{
    entry.access = check.access;
    entry.accessText = check.text;
}

// Without permission to open a device, hidapi has no names. The kernel does.
void completeNames(DeviceEntry& entry, const HidInterface& interface)
{
    const auto directory = interface.deviceDirectory();
    for (const auto& [name, attribute] : {std::pair{&entry.manufacturer, "manufacturer"},
             {&entry.product, "product"}, {&entry.serialNumber, "serial"}}) {
        if (name->empty())
            *name = sysfsAttribute(directory, attribute);
    }
}

} // namespace

UsbContext startUsb()
{
    // libusb's threads must not take the signals that are held during a check.
    const SignalHold hold;
    libusb_context* context = nullptr;
    if (const int error = libusb_init(&context))
        failWithoutUsb(libusb_strerror(error));
    UsbContext owner(context);
    if (hid_init() != 0)
        failWithoutUsb("hidapi cannot start");
    return owner;
}

std::vector<DeviceEntry> enumerateHid(uint16_t vendorId, uint16_t productId)
{
    const HidList list(hid_enumerate(vendorId, productId));
    std::vector<DeviceEntry> entries;
    for (const hid_device_info* info = list.get(); info; info = info->next) {
        DeviceEntry entry;
        entry.number = entries.size() + 1;
        entry.vendorId = info->vendor_id;
        entry.productId = info->product_id;
        entry.path = info->path;
        entry.manufacturer = utf8(info->manufacturer_string);
        entry.product = utf8(info->product_string);
        entry.serialNumber = utf8(info->serial_number);
        entry.interface = info->interface_number;
        entry.firstOfItsIds = std::none_of(entries.begin(), entries.end(),
            [&](const DeviceEntry& earlier) { return sameIds(earlier, entry); });
        entries.push_back(std::move(entry));
    }
    return entries;
}

void examine(DeviceEntry& entry, const HidInterface& interface, Detail detail)
{
    completeNames(entry, interface);
    if (entry.descriptor.empty())
        setDescriptor(entry, sysfsDescriptor(interface.directory()));
    const bool unknown = entry.descriptor.empty();
    if (!unknown && detail == Detail::kDescriptor)
        return;
    const bool mayClaim = !interface.boot && (unknown || entry.telephony);
    InterfaceCheck check
        = checkInterface(interface, mayClaim ? Depth::kClaim : Depth::kNode, unknown);
    if (unknown)
        setDescriptor(entry, std::move(check.descriptor));
    if (interface.boot && check.access == Access::kOpen) {
        check.access = Access::kNotTried;
        check.text = "not tried, because a keyboard or mouse would stop working";
    }
    setAccess(entry, check);
}

DeviceScan::DeviceScan(libusb_context* context)
{
    libusb_device** list = nullptr;
    const ssize_t count = libusb_get_device_list(context, &list);
    if (count < 0)
        failWithoutUsb(libusb_strerror(static_cast<int>(count)));
    list_.reset(list);
    devices_ = {list, static_cast<size_t>(count)};
    // After the list: a device whose node is missing leaves libusb's list when hidapi opens it.
    entries_ = enumerateHid();
}

std::optional<HidInterface> DeviceScan::interfaceOf(const DeviceEntry& entry) const
{
    return findInterface(devices_, entry.path);
}

void DeviceScan::complete(DeviceEntry& entry, Detail detail) const
{
    if (const auto interface = interfaceOf(entry))
        examine(entry, *interface, detail);
    else
        setAccess(entry, goneCheck());
}

} // namespace ctl
