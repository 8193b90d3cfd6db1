#include "hid/usb/UsbInterface.h"

#include "hid/usb/HidPath.h"

#include <algorithm>
#include <cassert>
#include <memory>
#include <span>

namespace KX {

namespace {

constexpr uint8_t kRequestType = 0x81;         // device to host, standard, interface
constexpr uint16_t kReportDescriptor = 0x2200; // type Report, index 0
constexpr unsigned kTimeoutMs = 5000;

struct FreeConfiguration {
    void operator()(libusb_config_descriptor* configuration) const
    {
        libusb_free_config_descriptor(configuration);
    }
};

struct FreeDeviceList {
    void operator()(libusb_device** list) const { libusb_free_device_list(list, 1); }
};

std::span<const libusb_interface_descriptor> AltSettings(const libusb_interface& interface)
{
    return {interface.altsetting, static_cast<size_t>(interface.num_altsetting)};
}

} // namespace

UsbInterface::~UsbInterface()
{
    if (driverDetached_)
        libusb_attach_kernel_driver(handle_, number_);
    if (handle_)
        libusb_close(handle_);
    if (context_)
        libusb_exit(context_);
}

bool UsbInterface::Open(const std::string& path)
{
    assert(!context_);
    if (libusb_init(&context_) != LIBUSB_SUCCESS)
        return false;
    libusb_device** found = nullptr;
    const ssize_t count = libusb_get_device_list(context_, &found);
    if (count < 0)
        return false;
    const std::unique_ptr<libusb_device*, FreeDeviceList> list(found);
    const std::span devices(found, static_cast<size_t>(count));
    return std::any_of(devices.begin(), devices.end(),
        [&](libusb_device* device) { return OpenIfNamed(device, path); });
}

bool UsbInterface::OpenIfNamed(libusb_device* device, const std::string& path)
{
    libusb_config_descriptor* active = nullptr;
    if (libusb_get_active_config_descriptor(device, &active) != LIBUSB_SUCCESS)
        return false;
    const std::unique_ptr<libusb_config_descriptor, FreeConfiguration> configuration(active);
    for (const auto& interface : std::span(active->interface, active->bNumInterfaces)) {
        for (const auto& descriptor : AltSettings(interface)) {
            if (descriptor.bInterfaceClass == LIBUSB_CLASS_HID
                && IsHidPath(path, device, *active, descriptor.bInterfaceNumber)
                && OpenInterface(device, descriptor))
                return true;
        }
    }
    return false;
}

bool UsbInterface::OpenInterface(
    libusb_device* device, const libusb_interface_descriptor& descriptor)
{
    if (libusb_open(device, &handle_) != LIBUSB_SUCCESS) {
        handle_ = nullptr;
        return false;
    }
    number_ = descriptor.bInterfaceNumber;
    if (!DetachDriver()) {
        libusb_close(handle_);
        handle_ = nullptr;
        return false;
    }
    if (descriptor.extra_length > 0)
        classDescriptor_.assign(descriptor.extra, descriptor.extra + descriptor.extra_length);
    return true;
}

bool UsbInterface::DetachDriver()
{
    if (libusb_kernel_driver_active(handle_, number_) != 1)
        return true;
    driverDetached_ = libusb_detach_kernel_driver(handle_, number_) == LIBUSB_SUCCESS;
    return driverDetached_;
}

bool UsbInterface::Claim()
{
    assert(handle_);
    return libusb_claim_interface(handle_, number_) == LIBUSB_SUCCESS;
}

void UsbInterface::Release()
{
    assert(handle_);
    libusb_release_interface(handle_, number_);
}

int UsbInterface::GetReportDescriptor(Bytes& descriptor)
{
    assert(handle_);
    return libusb_control_transfer(handle_, kRequestType, LIBUSB_REQUEST_GET_DESCRIPTOR,
        kReportDescriptor, static_cast<uint16_t>(number_), descriptor.data(),
        static_cast<uint16_t>(descriptor.size()), kTimeoutMs);
}

} // namespace KX
