// The owner of the device's interface: the kernel's driver, a client, or nobody.
#pragma once

#include "sim/device/device_model.h"

#include <umockdev.h>

namespace sim {

// The operations and their results are those of the kernel's usbfs. Not locked.
class InterfaceOwner {
public:
    explicit InterfaceOwner(DeviceModel& device)
        : device_(device)
    {
    }

    // These return the ioctl's result, or -errno. `number` is the interface number. A client may
    // claim again what it has claimed. A transfer to the interface also claims it.
    long claim(UMockdevIoctlClient* client, unsigned number);
    long release(UMockdevIoctlClient* client, unsigned number);
    long connectDriver(unsigned number);
    long disconnectDriver(unsigned number);

    // Releases what the client has claimed.
    void removeClient(UMockdevIoctlClient* client);

    // "usbhid", "usbfs", or null if the interface has no owner.
    const char* driverName() const;
    bool driverBound() const { return driverBound_; }
    bool claimed() const { return claimedBy_ != nullptr; }

private:
    DeviceModel& device_;
    bool driverBound_ = true;
    UMockdevIoctlClient* claimedBy_ = nullptr; // only compared
};

} // namespace sim
