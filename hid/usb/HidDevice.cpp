#include "hid/usb/HidDevice.h"

#include "hid/usb/DescriptorRetrieval.h"

#include <cwchar>

namespace KX {

namespace {

struct FreeEnumeration {
    void operator()(hid_device_info* list) const { hid_free_enumeration(list); }
};

bool SerialNumberIs(const hid_device_info& info, const wchar_t* wanted)
{
    return !wanted || (info.serial_number && std::wcscmp(info.serial_number, wanted) == 0);
}

} // namespace

std::unique_ptr<HidDevice> hid_open(uint16_t vendorId, uint16_t productId,
    const wchar_t* serialNumber, DescriptorFetch fetchDescriptor)
{
    const std::unique_ptr<hid_device_info, FreeEnumeration> list(
        hid_enumerate(vendorId, productId));
    for (const hid_device_info* info = list.get(); info; info = info->next) {
        // hidapi takes an id of 0 for "any"; a device is asked for here.
        if (info->vendor_id == vendorId && info->product_id == productId
            && SerialNumberIs(*info, serialNumber))
            return hid_open_path(info->path, fetchDescriptor);
    }
    return nullptr;
}

std::unique_ptr<HidDevice> hid_open_path(const char* path, DescriptorFetch fetchDescriptor)
{
    Bytes descriptor;
    if (fetchDescriptor == DescriptorFetch::On)
        descriptor = RetrieveReportDescriptor(path);
    hid_device* handle = ::hid_open_path(path);
    if (!handle)
        return nullptr;
    auto device = std::make_unique<HidDevice>(handle);
    device->reportDescriptor = std::move(descriptor);
    return device;
}

bool hid_get_report_descriptor_copy(const HidDevice* device, Bytes& out)
{
    if (!device || device->reportDescriptor.empty())
        return false;
    out = device->reportDescriptor;
    return true;
}

} // namespace KX
