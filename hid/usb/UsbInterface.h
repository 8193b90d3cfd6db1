// One HID interface of a USB device, opened through libusb by its hidapi path.
#pragma once

#include "hid/model/Bytes.h"

#include <libusb.h>
#include <string>

namespace KX {

// Owns a libusb context and a handle. For one thread at a time. All operations except Open() need
// an open interface.
class UsbInterface {
public:
    UsbInterface() = default;
    // Closes the handle. Attaches the kernel driver again if Open() detached one.
    ~UsbInterface();
    UsbInterface(const UsbInterface&) = delete;
    UsbInterface& operator=(const UsbInterface&) = delete;

    // Opens the device and detaches a kernel driver from the interface. If several interfaces have
    // that name and one cannot be opened, the next is tried, as in hidapi. False when none can be
    // opened. To be called once.
    [[nodiscard]] bool Open(const std::string& path);

    // The class-specific bytes after the interface descriptor. They start with the HID descriptor.
    [[nodiscard]] const Bytes& ClassDescriptor() const { return classDescriptor_; }

    [[nodiscard]] bool Claim();
    void Release();

    // Requests as many bytes as `descriptor` has. Blocks for at most 5 s. Returns the number of
    // bytes received, which overwrite the beginning of `descriptor`, or libusb's negative error.
    [[nodiscard]] int GetReportDescriptor(Bytes& descriptor);

private:
    [[nodiscard]] bool OpenIfNamed(libusb_device* device, const std::string& path);
    [[nodiscard]] bool OpenInterface(
        libusb_device* device, const libusb_interface_descriptor& descriptor);
    [[nodiscard]] bool DetachDriver();

    libusb_context* context_ = nullptr;
    libusb_device_handle* handle_ = nullptr;
    int number_ = 0;
    bool driverDetached_ = false;
    Bytes classDescriptor_;
};

} // namespace KX
