#include "sim/bus/interface_owner.h"

#include <cerrno>
#include <utility>

namespace sim {

long InterfaceOwner::claim(UMockdevIoctlClient* client)
{
    if (claimedBy_ == client)
        return 0;
    if (driverBound_ || claimedBy_ || device_.faults.refuseClaim.consume()) {
        addEvent(DeviceEvent::Kind::kClaimRefused);
        return -EBUSY;
    }
    claimedBy_ = client;
    ++device_.counters.claims;
    return 0;
}

void InterfaceOwner::startReading()
{
    if (!std::exchange(reading_, true))
        addEvent(DeviceEvent::Kind::kOpened);
}

void InterfaceOwner::stopReading()
{
    if (std::exchange(reading_, false))
        addEvent(DeviceEvent::Kind::kClosed);
}

long InterfaceOwner::release(UMockdevIoctlClient* client)
{
    if (claimedBy_ != client)
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
    stopReading();
}

long InterfaceOwner::connectDriver()
{
    if (driverBound_ || claimedBy_)
        return -EBUSY;
    if (!interface_.isHid())
        return 0;
    driverBound_ = true;
    return 1; // libusb takes a 0 for "no driver found"
}

long InterfaceOwner::disconnectDriver()
{
    if (!driverBound_)
        return -ENODATA;
    if (device_.faults.refuseDetach.consume()) {
        addEvent(DeviceEvent::Kind::kDetachRefused);
        return -EBUSY;
    }
    driverBound_ = false;
    return 0;
}

void InterfaceOwner::addEvent(DeviceEvent::Kind kind)
{
    device_.addEvent({.kind = kind, .interface = interface_.number});
}

const char* InterfaceOwner::driverName() const
{
    if (driverBound_)
        return "usbhid";
    return claimedBy_ ? "usbfs" : nullptr;
}

} // namespace sim
