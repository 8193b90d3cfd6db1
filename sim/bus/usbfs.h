// The kernel's usbfs for one plugged-in device: handles the ioctls of every client that has the
// device node open.
#pragma once

#include "sim/bus/hid_directory.h"
#include "sim/bus/interface_owner.h"
#include "sim/bus/pty_node.h"
#include "sim/bus/urb_queue.h"
#include "sim/device/device_model.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

namespace sim {

class Usbfs {
public:
    explicit Usbfs(std::shared_ptr<DeviceModel> device);

    const std::string& nodePath() const { return node_.path(); }

    // From now on the directories of the HID interfaces below `device`, in sysfs, are there while
    // the kernel's driver has the interface. To be called before a client can open the node.
    void showDrivers(const std::filesystem::path& device);

    // Any thread may call these. For those that UsbDevice has too, see there. The interface must
    // exist.
    Delivery inject(uint8_t interface, const Bytes& report, std::string cause);
    [[nodiscard]] bool waitUntilRead(std::chrono::milliseconds limit);
    void setOpenable(bool openable);
    void disconnect();
    bool driverBound(uint8_t interface);
    bool claimed(uint8_t interface);

    // For umockdev's thread. handleIoctl() completes the ioctl and runs the device's event
    // callback.
    void handleIoctl(UMockdevIoctlClient* client);
    void removeClient(UMockdevIoctlClient* client);

private:
    // The caller holds the lock. These return the ioctl's result, or -errno. `target` is the data
    // that the ioctl's argument points to.
    long answer(UMockdevIoctlClient* client);
    long answerConnected(
        UMockdevIoctlClient* client, unsigned long request, UMockdevIoctlData* target);
    long getDriver(UMockdevIoctlData* target);
    long release(UMockdevIoctlClient* client, unsigned number);
    long claim(UMockdevIoctlClient* client, unsigned number);
    long driverIoctl(UMockdevIoctlData* target);
    long submit(UMockdevIoctlClient* client, UMockdevIoctlData* target);
    long submitControl(Urb urb);
    long submitInterrupt(Urb urb, uint8_t endpoint);
    long reap(UMockdevIoctlClient* client, UMockdevIoctlData* target);

    // An interface of the device with its owner.
    struct Interface {
        InterfaceOwner owner;
        std::optional<HidDirectory> directory = std::nullopt;
    };
    Interface* find(unsigned number); // null if there is none
    Delivery queueInput(uint8_t interface, const Bytes& report);
    void stateChanged();

    const std::shared_ptr<DeviceModel> device_;

    std::mutex mutex_; // guards the fields below
    std::condition_variable changed_;
    PtyNode node_;
    bool connected_ = true;
    std::vector<Interface> interfaces_;
    UrbQueue urbs_;
};

} // namespace sim
