#include "sim/bus/usbfs.h"

#include "sim/device/usb_descriptors.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>
#include <utility>

namespace sim {
namespace {

// With these libusb makes one URB for each transfer, and reaps the URBs that fail at unplug.
constexpr uint32_t kCapabilities = USBDEVFS_CAP_ZERO_PACKET | USBDEVFS_CAP_NO_PACKET_SIZE_LIM
    | USBDEVFS_CAP_REAP_AFTER_DISCONNECT;

// The longest report or descriptor, after a setup packet.
constexpr int kMaxTransfer = 0xffff + int{DeviceModel::SetupPacket::kSize};

// The size of the data that the ioctl's argument points to. 0 if the argument is not used or is not
// a pointer to data (for DISCARDURB it is the URB's address in the client).
size_t targetSize(unsigned long request)
{
    switch (request) {
    case USBDEVFS_GET_CAPABILITIES:
        return sizeof(uint32_t);
    case USBDEVFS_SUBMITURB:
        return sizeof(usbdevfs_urb);
    case USBDEVFS_REAPURBNDELAY:
        return sizeof(void*);
    case USBDEVFS_GETDRIVER:
        return sizeof(usbdevfs_getdriver);
    case USBDEVFS_IOCTL:
        return sizeof(usbdevfs_ioctl);
    case USBDEVFS_CLAIMINTERFACE:
    case USBDEVFS_RELEASEINTERFACE:
        return sizeof(unsigned);
    default:
        return 0;
    }
}

} // namespace

Usbfs::Usbfs(std::shared_ptr<DeviceModel> device)
    : device_(std::move(device))
{
    for (const InterfaceInfo& interface : device_->info.interfaces)
        interfaces_.push_back({InterfaceOwner(*device_, interface)});
}

void Usbfs::showDrivers(const std::filesystem::path& device)
{
    for (Interface& interface : interfaces_)
        interface.directory.emplace(device, device_->info, interface.owner.interface());
}

Delivery Usbfs::inject(uint8_t interface, const Bytes& report, std::string cause)
{
    Delivery delivery{};
    {
        const std::lock_guard lock(mutex_);
        delivery = queueInput(interface, report);
        // Added before a client can read the report and react to it.
        device_->addEvent({.kind = DeviceEvent::Kind::kInput,
            .interface = interface,
            .report = report,
            .cause = std::move(cause),
            .delivery = delivery});
        stateChanged();
    }
    device_->deliverEvents();
    return delivery;
}

Delivery Usbfs::queueInput(uint8_t interface, const Bytes& report)
{
    const Interface* const found = find(interface);
    assert(found);
    if (!connected_ || found->owner.driverBound())
        return Delivery::kNoListener;
    const uint8_t endpoint = inAddress(found->owner.interface());
    return urbs_.addInput(endpoint, report) ? Delivery::kQueued : Delivery::kQueueFull;
}

bool Usbfs::waitUntilRead(std::chrono::milliseconds limit)
{
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, limit, [this] { return !connected_ || urbs_.allInputReaped(); });
    return connected_ && urbs_.allInputReaped();
}

void Usbfs::setOpenable(bool openable)
{
    const std::lock_guard lock(mutex_);
    if (connected_)
        node_.setOpenable(openable);
}

void Usbfs::disconnect()
{
    {
        const std::lock_guard lock(mutex_);
        if (!connected_)
            return;
        urbs_.finishAllWaiting(-ESHUTDOWN);
        stateChanged();
        connected_ = false;
        node_.hangUp();
        changed_.notify_all();
        for (Interface& interface : interfaces_)
            interface.owner.stopReading();
    }
    device_->deliverEvents();
}

bool Usbfs::driverBound(uint8_t interface)
{
    const std::lock_guard lock(mutex_);
    const Interface* const found = find(interface);
    return found && found->owner.driverBound();
}

bool Usbfs::claimed(uint8_t interface)
{
    const std::lock_guard lock(mutex_);
    const Interface* const found = find(interface);
    return found && found->owner.claimed();
}

void Usbfs::handleIoctl(UMockdevIoctlClient* client)
{
    {
        const std::lock_guard lock(mutex_);
        const long result = answer(client);
        stateChanged();
        umockdev_ioctl_client_complete(
            client, result < 0 ? -1 : result, result < 0 ? static_cast<int>(-result) : 0);
    }
    device_->waitForEvents(); // unlocked: the callback may inject or unplug
}

void Usbfs::removeClient(UMockdevIoctlClient* client)
{
    {
        const std::lock_guard lock(mutex_);
        urbs_.removeClient(client);
        for (Interface& interface : interfaces_)
            interface.owner.removeClient(client);
        stateChanged();
    }
    device_->waitForEvents();
}

long Usbfs::answer(UMockdevIoctlClient* client)
{
    UMockdevIoctlData* const argument = umockdev_ioctl_client_get_arg(client);
    const unsigned long request = umockdev_ioctl_client_get_request(client);
    const size_t size = targetSize(request);
    UMockdevIoctlData* const target = size ? resolve(argument, 0, size) : argument;
    if (!target)
        return -EFAULT;
    if (request == USBDEVFS_REAPURBNDELAY)
        return reap(client, target);
    return connected_ ? answerConnected(client, request, target) : -ENODEV;
}

long Usbfs::answerConnected(
    UMockdevIoctlClient* client, unsigned long request, UMockdevIoctlData* target)
{
    switch (request) {
    case USBDEVFS_GET_CAPABILITIES:
        store<uint32_t>(target, kCapabilities);
        return 0;
    case USBDEVFS_SUBMITURB:
        return submit(client, target);
    case USBDEVFS_DISCARDURB:
        return urbs_.discard(client, load<unsigned long>(target)) ? 0 : -EINVAL;
    case USBDEVFS_GETDRIVER:
        return getDriver(target);
    case USBDEVFS_IOCTL:
        return driverIoctl(target);
    case USBDEVFS_CLAIMINTERFACE:
        return claim(client, load<unsigned>(target));
    case USBDEVFS_RELEASEINTERFACE:
        return release(client, load<unsigned>(target));
    case USBDEVFS_SETINTERFACE:
    case USBDEVFS_SETCONFIGURATION:
    case USBDEVFS_CLEAR_HALT:
    case USBDEVFS_RESET:
        return 0;
    default:
        return -ENOTTY; // libusb does not need the others
    }
}

long Usbfs::claim(UMockdevIoctlClient* client, unsigned number)
{
    Interface* const interface = find(number);
    return interface ? interface->owner.claim(client) : -ENOENT;
}

long Usbfs::release(UMockdevIoctlClient* client, unsigned number)
{
    Interface* const interface = find(number);
    return interface ? interface->owner.release(client) : -EINVAL;
}

long Usbfs::getDriver(UMockdevIoctlData* target)
{
    auto answer = load<usbdevfs_getdriver>(target);
    const Interface* const interface = find(answer.interface);
    const char* const name = interface ? interface->owner.driverName() : nullptr;
    if (!name)
        return -ENODATA;
    snprintf(answer.driver, sizeof answer.driver, "%s", name);
    store(target, answer);
    return 0;
}

long Usbfs::driverIoctl(UMockdevIoctlData* target)
{
    const auto request = load<usbdevfs_ioctl>(target);
    Interface* const interface = find(static_cast<unsigned>(request.ifno));
    if (!interface)
        return -EINVAL;
    switch (static_cast<unsigned>(request.ioctl_code)) {
    case USBDEVFS_CONNECT: {
        const long result = interface->owner.connectDriver();
        if (result > 0)
            urbs_.dropInput(inAddress(interface->owner.interface())); // the driver reads it
        return result;
    }
    case USBDEVFS_DISCONNECT:
        return interface->owner.disconnectDriver();
    default:
        return -ENOTTY;
    }
}

Usbfs::Interface* Usbfs::find(unsigned number)
{
    const auto found = std::ranges::find_if(interfaces_, [number](const Interface& interface) {
        return interface.owner.interface().number == number;
    });
    return found == interfaces_.end() ? nullptr : &*found;
}

long Usbfs::submit(UMockdevIoctlClient* client, UMockdevIoctlData* target)
{
    const auto request = load<usbdevfs_urb>(target);
    if (request.buffer_length < 0 || request.buffer_length > kMaxTransfer)
        return -EINVAL;
    const auto length = static_cast<size_t>(request.buffer_length);
    if (urbs_.isFull())
        return -ENOMEM;
    Urb urb{.owner = client, .request = newReference(target)};
    urb.buffer = length ? resolve(target, offsetof(usbdevfs_urb, buffer), length) : nullptr;
    if (length && !urb.buffer)
        return -EFAULT;
    switch (request.type) {
    case USBDEVFS_URB_TYPE_CONTROL:
        return submitControl(std::move(urb));
    case USBDEVFS_URB_TYPE_INTERRUPT:
        return submitInterrupt(std::move(urb), request.endpoint);
    default:
        return -EINVAL;
    }
}

long Usbfs::submitControl(Urb urb)
{
    const auto bytes = urb.buffer ? bytesOf(urb.buffer) : std::span<uint8_t>{};
    if (bytes.size() < DeviceModel::SetupPacket::kSize)
        return -EINVAL;
    auto setup = DeviceModel::SetupPacket::from(bytes);
    if (setup.toInterface()) {
        if (const long result = claim(urb.owner, lowByte(setup.index)))
            return result;
    }
    urb.dataOffset = DeviceModel::SetupPacket::kSize;
    const auto stage = bytes.subspan(urb.dataOffset);
    setup.length = static_cast<uint16_t>(std::min<size_t>(setup.length, stage.size()));
    auto reply = device_->control(setup, stage.first(setup.length));
    urb.data = std::move(reply.data);
    urb.transferred = reply.transferred;
    urbs_.finish(std::move(urb), reply.stalled ? -EPIPE : 0);
    return 0;
}

long Usbfs::submitInterrupt(Urb urb, uint8_t endpoint)
{
    const auto has = [endpoint](const Interface& candidate) {
        const InterfaceInfo& info = candidate.owner.interface();
        const bool output = info.outEndpoint && info.outEndpoint == endpoint;
        return info.isHid() && (output || inAddress(info) == endpoint);
    };
    const auto interface = std::ranges::find_if(interfaces_, has);
    if (interface == interfaces_.end())
        return -ENOENT;
    if (const long result = interface->owner.claim(urb.owner))
        return result;
    const InterfaceInfo& info = interface->owner.interface();
    if (endpoint == inAddress(info)) {
        interface->owner.startReading();
        urbs_.waitForInput(endpoint, std::move(urb));
        return 0;
    }
    const auto bytes = urb.buffer ? bytesOf(urb.buffer) : std::span<uint8_t>{};
    const bool received = device_->receive(info, bytes);
    urb.transferred = received ? bytes.size() : 0;
    urbs_.finish(std::move(urb), received ? 0 : -EPIPE);
    return 0;
}

// Results are written into umockdev's copy of the client's memory only here, on umockdev's thread.
// If inject() wrote them, that would race with the end of SUBMITURB, when umockdev sends the copy
// back to the client.
long Usbfs::reap(UMockdevIoctlClient* client, UMockdevIoctlData* target)
{
    const std::optional<Urb> urb = urbs_.reap(client);
    if (!urb)
        return connected_ ? -EAGAIN : -ENODEV;
    auto request = load<usbdevfs_urb>(urb->request.get());
    request.status = urb->status;
    request.actual_length = static_cast<int>(urb->transferred);
    store(urb->request.get(), request);
    if (!urb->data.empty())
        std::memcpy(urb->buffer->data + urb->dataOffset, urb->data.data(), urb->data.size());
    umockdev_ioctl_data_set_ptr(target, 0, urb->request.get());
    return 0;
}

void Usbfs::stateChanged()
{
    if (connected_) {
        node_.setReady(urbs_.anyFinished());
        for (Interface& interface : interfaces_)
            if (interface.directory)
                interface.directory->setDriver(interface.owner.driverName());
    }
    if (urbs_.allInputReaped())
        changed_.notify_all();
}

} // namespace sim
