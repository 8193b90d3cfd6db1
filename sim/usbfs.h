// What the kernel's usbfs does for one plugged-in device: answers the ioctls
// of every client that has the device node open.
#pragma once

#include "device_model.h"
#include "pty_node.h"
#include "urb_queue.h"

#include <condition_variable>
#include <memory>
#include <mutex>

namespace sim {

class Usbfs {
public:
    explicit Usbfs(std::shared_ptr<DeviceModel> device);

    const std::string& nodePath() const { return node_.path(); }

    // Any thread, except that the last three are umockdev's alone.
    bool inject(const Bytes& report);
    [[nodiscard]] bool waitUntilRead(std::chrono::milliseconds limit);
    void setOpenable(bool openable);
    void disconnect();
    bool driverBound();
    bool claimed();
    void handleIoctl(UMockdevIoctlClient* client);
    void forget(UMockdevIoctlClient* client);

private:
    // These return the ioctl's result, or -errno.
    long answer(UMockdevIoctlClient* client);
    long answerConnected(
        UMockdevIoctlClient* client, unsigned long request, UMockdevIoctlData* arg);
    long getDriver(UMockdevIoctlData* arg) const;
    long driverIoctl(UMockdevIoctlData* arg);
    long connectDriver();
    long disconnectDriver();
    long claim(UMockdevIoctlClient* client);
    long release(UMockdevIoctlClient* client);
    long submit(UMockdevIoctlClient* client, UMockdevIoctlData* arg);
    long reap(UMockdevIoctlClient* client, UMockdevIoctlData* arg);

    void controlTransfer(Urb urb);
    void outputTransfer(Urb urb);
    void stateChanged();

    const std::shared_ptr<DeviceModel> device_;

    std::mutex mutex_; // guards all below
    std::condition_variable changed_;
    PtyNode node_;
    bool connected_ = true;
    bool driverBound_ = true; // the kernel's own HID driver
    UMockdevIoctlClient* claimedBy_ = nullptr;
    UrbQueue urbs_;
};

} // namespace sim
