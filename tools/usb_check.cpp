// kelprobe-usb-check: lists the machine's USB HID devices, says of each whether it can be opened,
// and what to do if none can. Exits with 0 when at least one can.
#include <libusb.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

namespace {

constexpr const char* kRuleAdvice
    = "No device can be opened for lack of permission. Give the user at the desk access to USB "
      "HID\n"
      "devices, as root:\n"
      "  cp packaging/70-kelprobe.rules /etc/udev/rules.d/\n"
      "  udevadm control --reload && udevadm trigger --subsystem-match=usb\n"
      "The rule is this line:\n"
      "  SUBSYSTEM==\"usb\", ENV{DEVTYPE}==\"usb_device\", ENV{ID_USB_INTERFACES}==\"*:03????:*\", "
      "TAG+=\"uaccess\"\n";

struct FreeConfiguration {
    void operator()(libusb_config_descriptor* configuration) const
    {
        libusb_free_config_descriptor(configuration);
    }
};

bool isHid(libusb_device* device)
{
    libusb_config_descriptor* active = nullptr;
    if (libusb_get_active_config_descriptor(device, &active) != LIBUSB_SUCCESS)
        return false;
    const std::unique_ptr<libusb_config_descriptor, FreeConfiguration> configuration(active);
    for (const auto& interface : std::span(active->interface, active->bNumInterfaces))
        if (interface.num_altsetting > 0
            && interface.altsetting->bInterfaceClass == LIBUSB_CLASS_HID)
            return true;
    return false;
}

// LIBUSB_SUCCESS or why the device cannot be opened.
int tryToOpen(libusb_device* device)
{
    libusb_device_handle* handle = nullptr;
    const int error = libusb_open(device, &handle);
    if (error == LIBUSB_SUCCESS)
        libusb_close(handle);
    return error;
}

struct Findings {
    int present = 0;
    int openable = 0;
    int forbidden = 0;
};

void check(libusb_device* device, Findings& findings)
{
    libusb_device_descriptor descriptor{};
    if (!isHid(device) || libusb_get_device_descriptor(device, &descriptor) != LIBUSB_SUCCESS)
        return;
    const int error = tryToOpen(device);
    ++findings.present;
    findings.openable += error == LIBUSB_SUCCESS;
    findings.forbidden += error == LIBUSB_ERROR_ACCESS;
    std::printf("%04x:%04x on bus %u, device %u: %s\n", descriptor.idVendor, descriptor.idProduct,
        unsigned{libusb_get_bus_number(device)}, unsigned{libusb_get_device_address(device)},
        error == LIBUSB_SUCCESS            ? "can be opened"
            : error == LIBUSB_ERROR_ACCESS ? "no permission"
                                           : libusb_strerror(error));
}

int conclude(const Findings& findings)
{
    if (findings.openable > 0)
        return 0;
    if (findings.present == 0)
        std::puts(
            "No USB HID device is present. Plug one in, or try ./dev run for a simulated one.");
    else if (findings.forbidden > 0)
        std::fputs(kRuleAdvice, stdout);
    else
        std::puts("None of these devices can be opened.");
    return 1;
}

} // namespace

int main()
{
    libusb_context* context = nullptr;
    const int error = libusb_init(&context);
    if (error != LIBUSB_SUCCESS) {
        std::printf("USB cannot be used on this machine: %s\n", libusb_strerror(error));
        return 1;
    }
    Findings findings;
    libusb_device** list = nullptr;
    const ssize_t count = libusb_get_device_list(context, &list);
    for (ssize_t i = 0; i < count; ++i)
        check(list[i], findings);
    if (count >= 0)
        libusb_free_device_list(list, 1);
    libusb_exit(context);
    return conclude(findings);
}
