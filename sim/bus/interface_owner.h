// Who has the device's interface: the kernel's driver, a client, or nobody.
// The operations are usbfs's own, with the kernel's answers. Not locked.
#pragma once

#include "sim/device/device_model.h"

#include <umockdev.h>

namespace sim {

class InterfaceOwner {
public:
    explicit InterfaceOwner(DeviceModel& device)
        : device_(device)
    {
    }

    // These return the ioctl's result, or -errno. `number` is the interface's.
    // To claim what one has already is no error and does not count. A transfer
    // to the interface claims it too, if its client did not.
    long claim(UMockdevIoctlClient* client, unsigned number);
    long release(UMockdevIoctlClient* client, unsigned number);
    long connectDriver(unsigned number);
    long disconnectDriver(unsigned number);

    void forget(UMockdevIoctlClient* client); // it is gone

    // "usbhid", "usbfs", or null if nobody has the interface.
    const char* driverName() const;
    bool driverBound() const { return driverBound_; }
    bool claimed() const { return claimedBy_ != nullptr; }

private:
    DeviceModel& device_;
    bool driverBound_ = true;
    UMockdevIoctlClient* claimedBy_ = nullptr; // only compared
};

} // namespace sim
