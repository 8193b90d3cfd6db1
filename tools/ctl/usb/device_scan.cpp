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

UsbContext makeContext()
{
    libusb_context* context = nullptr;
    if (const int error = libusb_init(&context))
        failWithoutUsb(libusb_strerror(error));
    return UsbContext(context);
}

bool sameIds(const DeviceEntry& one, const DeviceEntry& other)
{
    return one.vendorId == other.vendorId && one.productId == other.productId;
}

std::vector<DeviceEntry> enumerate()
{
    if (hid_init() != 0)
        failWithoutUsb("hidapi cannot start");
    const HidList list(hid_enumerate(0, 0));
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

DeviceScan::DeviceScan()
{
    // libusb's threads must not take the signals that are held during a check.
    const SignalHold hold;
    context_ = makeContext();
    entries_ = enumerate();
    libusb_device** list = nullptr;
    const ssize_t count = libusb_get_device_list(context_.get(), &list);
    if (count < 0)
        failWithoutUsb(libusb_strerror(static_cast<int>(count)));
    list_.reset(list);
    devices_ = {list, static_cast<size_t>(count)};
}

void DeviceScan::readDescriptor(DeviceEntry& entry)
{
    complete(entry, false);
}

void DeviceScan::examine(DeviceEntry& entry)
{
    complete(entry, true);
}

void DeviceScan::complete(DeviceEntry& entry, bool wantAccess)
{
    const auto interface = findInterface(devices_, entry.path);
    if (!interface) {
        setAccess(entry, goneCheck());
        return;
    }
    completeNames(entry, *interface);
    if (entry.descriptor.empty())
        setDescriptor(entry, sysfsDescriptor(interface->directory()));
    const bool unknown = entry.descriptor.empty();
    if (!unknown && !wantAccess)
        return;
    const bool mayClaim = !interface->boot && (unknown || entry.telephony);
    InterfaceCheck check
        = checkInterface(*interface, mayClaim ? Depth::kClaim : Depth::kNode, unknown);
    setAccess(entry, check);
    if (unknown)
        setDescriptor(entry, std::move(check.descriptor));
    if (interface->boot && check.access == Access::kOpen)
        setAccess(entry,
            {Access::kNotTried, "not tried, because a keyboard or mouse would stop working", {},
                0});
}

} // namespace ctl
