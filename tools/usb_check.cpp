// kelprobe-usb-check: shows for each USB HID device of the machine whether Kelprobe can open it
// and, if not, what to do.
#include <libusb.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string_view>

namespace {

enum ExitStatus { kCanOpen = 0, kCannotOpen = 1, kWrongUse = 2 };

constexpr const char* kHelp
    = "usage: kelprobe-usb-check\n"
      "\n"
      "Lists the machine's USB HID devices and tries to open and claim each, as Kelprobe does.\n"
      "Detaches the kernel's driver during the check and attaches it again.\n"
      "\n"
      "Exit status: 0 at least one device can be opened, 1 none can, 2 wrong use.\n";

constexpr const char* kPermissionAdvice
    = "\n"
      "For devices without permission: give the user at this machine access to USB audio devices\n"
      "that have HID controls. As root:\n"
      "  cp packaging/70-kelprobe.rules /etc/udev/rules.d/\n"
      "  udevadm control --reload && udevadm trigger --subsystem-match=usb\n"
      "Then plug the device in again.\n";

constexpr const char* kBusyAdvice
    = "\n"
      "For devices in use: close the program that has them open, then try again.\n";

struct FreeConfiguration {
    void operator()(libusb_config_descriptor* configuration) const
    {
        libusb_free_config_descriptor(configuration);
    }
};

struct CloseHandle {
    void operator()(libusb_device_handle* handle) const { libusb_close(handle); }
};

// The number of the first HID interface, which is the one that Kelprobe opens; -1 without one.
int firstHidInterface(libusb_device* device)
{
    libusb_config_descriptor* active = nullptr;
    if (libusb_get_active_config_descriptor(device, &active) != LIBUSB_SUCCESS)
        return -1;
    const std::unique_ptr<libusb_config_descriptor, FreeConfiguration> configuration(active);
    for (const auto& interface : std::span(active->interface, active->bNumInterfaces)) {
        if (interface.num_altsetting > 0
            && interface.altsetting->bInterfaceClass == LIBUSB_CLASS_HID)
            return interface.altsetting->bInterfaceNumber;
    }
    return -1;
}

// Opens the device and claims the interface, then undoes both. LIBUSB_SUCCESS or libusb's error.
int tryToOpen(libusb_device* device, int interface)
{
    libusb_device_handle* opened = nullptr;
    if (const int error = libusb_open(device, &opened))
        return error;
    const std::unique_ptr<libusb_device_handle, CloseHandle> handle(opened);
    const bool hasDriver = libusb_kernel_driver_active(opened, interface) == 1;
    int error = hasDriver ? libusb_detach_kernel_driver(opened, interface) : LIBUSB_SUCCESS;
    if (error)
        return error;
    error = libusb_claim_interface(opened, interface);
    if (!error)
        libusb_release_interface(opened, interface);
    if (hasDriver)
        libusb_attach_kernel_driver(opened, interface);
    return error;
}

const char* verdict(int error)
{
    switch (error) {
    case LIBUSB_SUCCESS:
        return "can be opened";
    case LIBUSB_ERROR_ACCESS:
        return "no permission";
    case LIBUSB_ERROR_BUSY:
        return "in use by another program";
    default:
        return libusb_strerror(error);
    }
}

struct Findings {
    int present = 0;
    int openable = 0;
    int forbidden = 0;
    int busy = 0;
};

void check(libusb_device* device, Findings& findings)
{
    libusb_device_descriptor descriptor{};
    const int interface = firstHidInterface(device);
    if (interface < 0 || libusb_get_device_descriptor(device, &descriptor) != LIBUSB_SUCCESS)
        return;
    const int error = tryToOpen(device, interface);
    ++findings.present;
    findings.openable += error == LIBUSB_SUCCESS;
    findings.forbidden += error == LIBUSB_ERROR_ACCESS;
    findings.busy += error == LIBUSB_ERROR_BUSY;
    std::printf("%04x:%04x on bus %u, device %u: %s\n", descriptor.idVendor, descriptor.idProduct,
        unsigned{libusb_get_bus_number(device)}, unsigned{libusb_get_device_address(device)},
        verdict(error));
}

void advise(const Findings& findings)
{
    if (findings.present == 0)
        std::puts("No USB HID device is present. Plug one in, or use a simulated one: ./dev run");
    if (findings.forbidden > 0)
        std::fputs(kPermissionAdvice, stdout);
    if (findings.busy > 0)
        std::fputs(kBusyAdvice, stdout);
}

int checkAll()
{
    libusb_context* context = nullptr;
    if (const int error = libusb_init(&context)) {
        std::printf("USB cannot be used on this machine: %s\n", libusb_strerror(error));
        return kCannotOpen;
    }
    Findings findings;
    libusb_device** list = nullptr;
    const ssize_t count = libusb_get_device_list(context, &list);
    for (ssize_t i = 0; i < count; ++i)
        check(list[i], findings);
    if (count >= 0)
        libusb_free_device_list(list, 1);
    libusb_exit(context);
    advise(findings);
    if (std::fflush(stdout) != 0) {
        std::perror("kelprobe-usb-check: standard output");
        return kCannotOpen;
    }
    return findings.openable > 0 ? kCanOpen : kCannotOpen;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc <= 1)
        return checkAll();
    const std::string_view option = argv[1];
    if (argc == 2 && option == "--help") {
        std::fputs(kHelp, stdout);
        return 0;
    }
    if (argc == 2 && option == "--version") {
        std::puts("kelprobe-usb-check " KELPROBE_VERSION);
        return 0;
    }
    std::fprintf(stderr, "kelprobe-usb-check: unknown argument %s\n%s", argv[1], kHelp);
    return kWrongUse;
}
