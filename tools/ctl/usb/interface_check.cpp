#include "tools/ctl/usb/interface_check.h"

#include "tools/ctl/cli/unique_fd.h"
#include "tools/ctl/usb/signal_hold.h"
#include "tools/ctl/usb/sysfs.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace ctl {
namespace {

using namespace std::chrono_literals;

constexpr uint8_t kFromInterface = 0x81;          // device to host, standard, interface
constexpr uint16_t kReportDescriptor = 0x22 << 8; // type Report, index 0
constexpr int kAttempts = 4;                      // as the stack makes
constexpr unsigned kTimeoutMs = 1000;
constexpr auto kPause = 10ms; // between attempts
constexpr int kAttachAttempts = 10;
constexpr int kLockAttempts = 500; // 5 s, longer than a check takes

// Has the interface without the kernel's driver. The destructor undoes both.
class ClaimedInterface {
public:
    ClaimedInterface(libusb_device_handle* handle, int number)
        : handle_(handle)
        , number_(number)
    {
        const int error = libusb_kernel_driver_active(handle, number) == 1
            ? libusb_detach_kernel_driver(handle, number)
            : LIBUSB_ERROR_NOT_FOUND;
        detached_ = error == LIBUSB_SUCCESS;
        if (!detached_ && error != LIBUSB_ERROR_NOT_FOUND) // another program may detach it, too
            detachError_ = error;
        if (!detachError_)
            claimError_ = libusb_claim_interface(handle, number);
        claimed_ = !detachError_ && !claimError_;
    }
    ~ClaimedInterface() { (void)giveBack(); }
    ClaimedInterface(const ClaimedInterface&) = delete;
    ClaimedInterface& operator=(const ClaimedInterface&) = delete;

    // libusb's errors, 0 also if there was nothing to do.
    [[nodiscard]] int detachError() const { return detachError_; }
    [[nodiscard]] int claimError() const { return claimError_; }

    // What the destructor does. Returns libusb's error if the driver could not be attached.
    [[nodiscard]] int giveBack()
    {
        if (std::exchange(claimed_, false))
            libusb_release_interface(handle_, number_);
        return std::exchange(detached_, false) ? attach() : LIBUSB_SUCCESS;
    }

private:
    // Another program may have the interface for a moment.
    [[nodiscard]] int attach() const
    {
        int error = LIBUSB_ERROR_BUSY;
        for (int attempt = 0; attempt < kAttachAttempts && error == LIBUSB_ERROR_BUSY; ++attempt) {
            if (attempt > 0)
                std::this_thread::sleep_for(kPause);
            error = libusb_attach_kernel_driver(handle_, number_);
        }
        return error;
    }

    libusb_device_handle* const handle_;
    const int number_;
    bool detached_ = false;
    bool claimed_ = false;
    int detachError_ = LIBUSB_SUCCESS;
    int claimError_ = LIBUSB_SUCCESS;
};

// Keeps other instances of this program from checking the device at the same time: one would detach
// the driver, and the other would have the interface when the driver is to be attached again.
class DeviceLock {
public:
    // Waits for some seconds, then continues without the lock.
    explicit DeviceLock(const HidInterface& interface)
        : node_(open(interface.node.c_str(), O_RDWR | O_CLOEXEC))
    {
        for (int i = 0; i < kLockAttempts && node_.get() >= 0; ++i) {
            if (flock(node_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
                break;
            std::this_thread::sleep_for(kPause);
        }
    }

private:
    const UniqueFd node_;
};

// As in a container that has /sys but not the devices. A device that was plugged in again has
// another number and node.
bool isPresentWithoutNode(const HidInterface& interface)
{
    const std::string number = sysfsAttribute(interface.deviceSys, "devnum");
    return number == std::to_string(libusb_get_device_address(interface.device.get()))
        && access(interface.node.c_str(), F_OK) != 0;
}

InterfaceCheck missingNodeCheck(const HidInterface& interface)
{
    return {Access::kOtherError,
        interface.node + " is not there; give this container or sandbox access to /dev/bus/usb", {},
        LIBUSB_ERROR_NO_DEVICE};
}

InterfaceCheck goneCheck()
{
    return {Access::kOtherError, "it was unplugged meanwhile", {}, LIBUSB_ERROR_NO_DEVICE};
}

InterfaceCheck failed(const HidInterface& interface, int error)
{
    switch (error) {
    case LIBUSB_SUCCESS:
        return {};
    case LIBUSB_ERROR_ACCESS:
        return {Access::kNoPermission,
            "no permission to open " + interface.node
                + "; install the udev rule: kelprobectl doctor explains how",
            {}, error};
    case LIBUSB_ERROR_BUSY:
        return {Access::kBusy, "another program has the interface; close that program", {}, error};
    case LIBUSB_ERROR_NO_DEVICE:
        return isPresentWithoutNode(interface) ? missingNodeCheck(interface) : goneCheck();
    default:
        return {Access::kOtherError, std::string(libusb_strerror(error)) + "; plug it in again", {},
            error};
    }
}

// As libusb does when it opens the node.
int usbError(int systemError)
{
    switch (systemError) {
    case EACCES:
    case EPERM: // a container without the device
        return LIBUSB_ERROR_ACCESS;
    case ENOENT:
    case ENODEV:
    case ENXIO:
        return LIBUSB_ERROR_NO_DEVICE;
    case ENOMEM:
        return LIBUSB_ERROR_NO_MEM;
    default:
        return LIBUSB_ERROR_IO;
    }
}

InterfaceCheck driverFailed(const HidInterface& interface, int error, const std::string& what)
{
    if (error == LIBUSB_ERROR_NO_DEVICE)
        return failed(interface, error);
    return {Access::kOtherError, what + "; plug the device in again", {}, error};
}

report::Bytes readDescriptor(libusb_device_handle* handle, const HidInterface& interface)
{
    report::Bytes descriptor(interface.announcedLength);
    int received = 0;
    for (int attempt = 0; attempt < kAttempts && !descriptor.empty(); ++attempt) {
        received = libusb_control_transfer(handle, kFromInterface, LIBUSB_REQUEST_GET_DESCRIPTOR,
            kReportDescriptor, static_cast<uint16_t>(interface.number), descriptor.data(),
            static_cast<uint16_t>(descriptor.size()), kTimeoutMs);
        if (received == static_cast<int>(descriptor.size()) || received == LIBUSB_ERROR_TIMEOUT
            || received == LIBUSB_ERROR_NO_DEVICE)
            break;
    }
    descriptor.resize(received > 0 ? static_cast<size_t>(received) : 0);
    return descriptor;
}

InterfaceCheck claim(libusb_device_handle* handle, const HidInterface& interface, bool read)
{
    ClaimedInterface claimed(handle, interface.number);
    if (claimed.detachError())
        return driverFailed(interface, claimed.detachError(), "the kernel's driver stays attached");
    InterfaceCheck check = failed(interface, claimed.claimError());
    if (check.access == Access::kOpen && read)
        check.descriptor = readDescriptor(handle, interface);
    if (const int error = claimed.giveBack(); error && check.access != Access::kBusy)
        return driverFailed(interface, error, "the kernel's driver could not be attached again");
    return check;
}

} // namespace

InterfaceCheck checkNode(const HidInterface& interface)
{
    const UniqueFd node(open(interface.node.c_str(), O_RDWR | O_CLOEXEC));
    if (node.get() < 0)
        return failed(interface, usbError(errno));
    const bool claimed = sysfsDriver(interface.sys) == kProgramsDriver;
    return failed(interface, claimed ? LIBUSB_ERROR_BUSY : LIBUSB_SUCCESS);
}

InterfaceCheck checkByClaim(const HidInterface& interface, bool wantDescriptor)
{
    const DeviceLock lock(interface);
    const SignalHold hold;
    libusb_device_handle* opened = nullptr;
    if (const int error = libusb_open(interface.device.get(), &opened))
        return failed(interface, error);
    const UsbDeviceHandle handle(opened);
    return claim(opened, interface, wantDescriptor);
}

} // namespace ctl
