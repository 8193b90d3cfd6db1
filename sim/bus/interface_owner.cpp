#include "sim/bus/interface_owner.h"

#include <cerrno>

namespace sim {

long InterfaceOwner::claim(UMockdevIoctlClient* client, unsigned number)
{
    if (number != device_.info.interfaceNumber)
        return -ENOENT;
    if (claimedBy_ == client)
        return 0;
    if (driverBound_ || claimedBy_ || device_.faults.refuseClaim.consume()) {
        device_.addEvent({DeviceEvent::Kind::kClaimRefused});
        return -EBUSY;
    }
    claimedBy_ = client;
    ++device_.counters.claims;
    return 0;
}

long InterfaceOwner::release(UMockdevIoctlClient* client, unsigned number)
{
    if (number != device_.info.interfaceNumber || claimedBy_ != client)
        return -EINVAL;
    removeClient(client);
    return 0;
}

void InterfaceOwner::removeClient(UMockdevIoctlClient* client)
{
    if (claimedBy_ != client)
        return;
    claimedBy_ = nullptr;
    ++device_.counters.releases;
}

long InterfaceOwner::connectDriver(unsigned number)
{
    if (number != device_.info.interfaceNumber)
        return -EINVAL;
    if (driverBound_ || claimedBy_)
        return -EBUSY;
    driverBound_ = true;
    return 1; // libusb takes a 0 for "no driver found"
}

long InterfaceOwner::disconnectDriver(unsigned number)
{
    if (number != device_.info.interfaceNumber)
        return -EINVAL;
    if (!driverBound_)
        return -ENODATA;
    if (device_.faults.refuseDetach.consume()) {
        device_.addEvent({DeviceEvent::Kind::kDetachRefused});
        return -EBUSY;
    }
    driverBound_ = false;
    return 0;
}

const char* InterfaceOwner::driverName() const
{
    if (driverBound_)
        return "usbhid";
    return claimedBy_ ? "usbfs" : nullptr;
}

} // namespace sim
