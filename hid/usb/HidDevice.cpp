#include "hid/usb/HidDevice.h"

#include "hid/usb/DescriptorRetrieval.h"

#include <hidapi/hidapi.h>

#include <cassert>
#include <cwchar>

namespace KX {

namespace {

int openDevices = 0;

struct FreeEnumeration {
    void operator()(hid_device_info* list) const { hid_free_enumeration(list); }
};

bool SerialNumberIs(const hid_device_info& info, const wchar_t* wanted)
{
    return !wanted || (info.serial_number && std::wcscmp(info.serial_number, wanted) == 0);
}

} // namespace

void CloseHidHandle::operator()(hid_device_* handle) const
{
    hid_close(handle);
}

HidDevice::HidDevice(HidHandle handle, Bytes reportDescriptor)
    : handle_(std::move(handle))
    , reportDescriptor_(std::move(reportDescriptor))
{
    assert(handle_);
    ++openDevices;
}

HidDevice::~HidDevice()
{
    --openDevices;
}

int HidDevice::Read(std::span<uint8_t> buffer, int timeoutMs)
{
    return hid_read_timeout(handle_.get(), buffer.data(), buffer.size(), timeoutMs);
}

bool HidDevice::Write(std::span<const uint8_t> report)
{
    return hid_write(handle_.get(), report.data(), report.size()) >= 0;
}

std::unique_ptr<HidDevice> hid_open(uint16_t vendorId, uint16_t productId,
    const wchar_t* serialNumber, DescriptorFetch fetchDescriptor)
{
    const std::unique_ptr<hid_device_info, FreeEnumeration> list(
        hid_enumerate(vendorId, productId));
    for (const hid_device_info* info = list.get(); info; info = info->next) {
        // For hidapi an id of 0 means any device. Here it means the id 0.
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
    HidHandle handle(::hid_open_path(path));
    if (!handle)
        return nullptr;
    return std::make_unique<HidDevice>(std::move(handle), std::move(descriptor));
}

bool hid_get_report_descriptor_copy(const HidDevice* device, Bytes& out)
{
    if (!device || device->ReportDescriptor().empty())
        return false;
    out = device->ReportDescriptor();
    return true;
}

void hid_exit()
{
    assert(openDevices == 0);
    ::hid_exit();
}

} // namespace KX
