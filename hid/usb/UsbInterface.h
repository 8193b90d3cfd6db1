// One HID interface of a USB device, opened through libusb by hidapi's name for it.
#pragma once

#include "hid/model/Bytes.h"

#include <libusb.h>
#include <string>

namespace KX {

// Owns a libusb context and handle. One thread at a time.
class UsbInterface {
public:
    UsbInterface() = default;
    ~UsbInterface();
    UsbInterface(const UsbInterface&) = delete;
    UsbInterface& operator=(const UsbInterface&) = delete;

    // Opens the device and takes the interface from a kernel driver; the destructor gives it back.
    // Goes on to the next interface of that name when one cannot be had, as hidapi does. False
    // when none can. Once per object.
    [[nodiscard]] bool Open(const std::string& path);

    // The bytes behind the interface's descriptor: a HID descriptor comes first.
    [[nodiscard]] const Bytes& ClassDescriptor() const { return classDescriptor_; }

    [[nodiscard]] bool Claim();
    void Release();

    // Asks for as many bytes as `descriptor` has, within 5 s. Returns the number received, which
    // overwrite its first bytes, or libusb's negative error.
    [[nodiscard]] int GetReportDescriptor(Bytes& descriptor);

private:
    [[nodiscard]] bool OpenOn(libusb_device* device, const std::string& path);
    [[nodiscard]] bool Take(libusb_device* device, const libusb_interface_descriptor& descriptor);
    [[nodiscard]] bool DetachDriver();

    libusb_context* context_ = nullptr;
    libusb_device_handle* handle_ = nullptr;
    int number_ = 0;
    bool driverDetached_ = false;
    Bytes classDescriptor_;
};

} // namespace KX
