// The owner of an interface: the kernel's driver, a client, or nobody.
#pragma once

#include "sim/device/device_model.h"

#include <umockdev.h>

namespace sim {

// The operations and their results are those of the kernel's usbfs. Not locked.
class InterfaceOwner {
public:
    // Both must outlive the object. The kernel has a driver for the class HID only.
    InterfaceOwner(DeviceModel& device, const InterfaceInfo& interface)
        : device_(device)
        , interface_(interface)
        , driverBound_(interface.isHid())
    {
    }

    // These return the ioctl's result, or -errno. A client may claim again what it has claimed. A
    // transfer to the interface also claims it.
    long claim(UMockdevIoctlClient* client);
    long release(UMockdevIoctlClient* client);
    long connectDriver();
    long disconnectDriver();

    // A client that has claimed the interface reads from it. The first call adds the event kOpened;
    // claim() does not, because programs also claim an interface only to read its descriptor.
    void startReading();
    void stopReading(); // also when the interface is released

    // Releases the interface if the client has claimed it.
    void removeClient(UMockdevIoctlClient* client);

    const InterfaceInfo& interface() const { return interface_; }

    // "usbhid", "usbfs", or null if the interface has no owner.
    const char* driverName() const;
    bool driverBound() const { return driverBound_; }
    bool claimed() const { return claimedBy_ != nullptr; }

private:
    void addEvent(DeviceEvent::Kind kind);

    DeviceModel& device_;
    const InterfaceInfo& interface_;
    bool driverBound_;
    UMockdevIoctlClient* claimedBy_ = nullptr; // only compared
    bool reading_ = false;
};

} // namespace sim
