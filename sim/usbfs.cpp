#include "usbfs.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>
#include <utility>

namespace sim {

Usbfs::Usbfs(std::shared_ptr<DeviceModel> device)
    : device_(std::move(device))
{
}

bool Usbfs::inject(const Bytes& report)
{
    const std::lock_guard lock(mutex_);
    if (!connected_ || driverBound_ || !urbs_.addInput(report))
        return false;
    stateChanged();
    return true;
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
    const std::lock_guard lock(mutex_);
    if (!connected_)
        return;
    urbs_.finishAllWaiting(-ESHUTDOWN);
    stateChanged();
    connected_ = false;
    node_.hangUp();
    changed_.notify_all();
}

bool Usbfs::driverBound()
{
    const std::lock_guard lock(mutex_);
    return driverBound_;
}

bool Usbfs::claimed()
{
    const std::lock_guard lock(mutex_);
    return claimedBy_ != nullptr;
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
    device_->notify(); // unlocked: the callback may inject or unplug
}

void Usbfs::forget(UMockdevIoctlClient* client)
{
    const std::lock_guard lock(mutex_);
    urbs_.dropOwner(client);
    release(client);
    stateChanged();
}

long Usbfs::answer(UMockdevIoctlClient* client)
{
    UMockdevIoctlData* const arg = umockdev_ioctl_client_get_arg(client);
    const unsigned long request = umockdev_ioctl_client_get_request(client);
    if (request == USBDEVFS_REAPURBNDELAY)
        return reap(client, arg);
    return connected_ ? answerConnected(client, request, arg) : -ENODEV;
}

long Usbfs::answerConnected(
    UMockdevIoctlClient* client, unsigned long request, UMockdevIoctlData* arg)
{
    switch (request) {
    case USBDEVFS_GET_CAPABILITIES:
        store<uint32_t>(resolve(arg, 0, sizeof(uint32_t)),
            USBDEVFS_CAP_ZERO_PACKET | USBDEVFS_CAP_NO_PACKET_SIZE_LIM
                | USBDEVFS_CAP_REAP_AFTER_DISCONNECT);
        return 0;
    case USBDEVFS_SUBMITURB:
        return submit(client, arg);
    case USBDEVFS_DISCARDURB: // the argument is an address of the client's, not to be followed
        return urbs_.discard(client, load<unsigned long>(arg)) ? 0 : -EINVAL;
    case USBDEVFS_GETDRIVER:
        return getDriver(resolve(arg, 0, sizeof(usbdevfs_getdriver)));
    case USBDEVFS_IOCTL:
        return driverIoctl(resolve(arg, 0, sizeof(usbdevfs_ioctl)));
    case USBDEVFS_CLAIMINTERFACE:
        return claim(client);
    case USBDEVFS_RELEASEINTERFACE:
        return release(client);
    case USBDEVFS_SETINTERFACE:
    case USBDEVFS_SETCONFIGURATION:
    case USBDEVFS_CLEAR_HALT:
    case USBDEVFS_RESET:
        return 0;
    default:
        return -ENOTTY; // libusb has a way round each of the others
    }
}

long Usbfs::getDriver(UMockdevIoctlData* arg) const
{
    if (!driverBound_ && !claimedBy_)
        return -ENODATA;
    const std::string_view name = driverBound_ ? "usbhid" : "usbfs";
    auto answer = load<usbdevfs_getdriver>(arg);
    answer.driver[name.copy(answer.driver, sizeof answer.driver - 1)] = '\0';
    store(arg, answer);
    return 0;
}

long Usbfs::driverIoctl(UMockdevIoctlData* arg)
{
    switch (static_cast<unsigned>(load<usbdevfs_ioctl>(arg).ioctl_code)) {
    case USBDEVFS_CONNECT:
        return connectDriver();
    case USBDEVFS_DISCONNECT:
        return disconnectDriver();
    default:
        return -ENOTTY;
    }
}

long Usbfs::connectDriver()
{
    if (driverBound_ || claimedBy_)
        return -EBUSY;
    driverBound_ = true;
    urbs_.forgetInput(); // the driver takes it
    return 1;            // libusb takes a 0 for "no driver found"
}

long Usbfs::disconnectDriver()
{
    if (!driverBound_)
        return -ENODATA;
    if (device_->faults.refuseDetach.strikes())
        return -EBUSY;
    driverBound_ = false;
    return 0;
}

long Usbfs::claim(UMockdevIoctlClient* client)
{
    if (driverBound_ || (claimedBy_ && claimedBy_ != client)
        || device_->faults.refuseClaim.strikes())
        return -EBUSY;
    claimedBy_ = client;
    ++device_->counters.claims;
    return 0;
}

long Usbfs::release(UMockdevIoctlClient* client)
{
    if (claimedBy_ != client)
        return -EINVAL;
    claimedBy_ = nullptr;
    ++device_->counters.releases;
    return 0;
}

long Usbfs::submit(UMockdevIoctlClient* client, UMockdevIoctlData* arg)
{
    UMockdevIoctlData* const data = resolve(arg, 0, sizeof(usbdevfs_urb));
    const auto request = load<usbdevfs_urb>(data);
    const bool control = request.type == USBDEVFS_URB_TYPE_CONTROL;
    const bool input = request.endpoint == kEndpointIn;
    const bool output = request.endpoint == kEndpointOut && device_->info.hasOutEndpoint;
    if (!control && (request.type != USBDEVFS_URB_TYPE_INTERRUPT || (!input && !output)))
        return -ENOENT;
    if (request.buffer_length < (control ? int{DeviceModel::SetupPacket::kSize} : 0))
        return -EINVAL;
    const auto length = static_cast<size_t>(request.buffer_length);
    Urb urb{.owner = client, .request = keep(data)};
    urb.buffer = length ? resolve(data, offsetof(usbdevfs_urb, buffer), length) : nullptr;
    if (length && !urb.buffer)
        return -EFAULT;
    if (control)
        controlTransfer(std::move(urb));
    else if (input)
        urbs_.waitForInput(std::move(urb));
    else
        outputTransfer(std::move(urb));
    return 0;
}

void Usbfs::controlTransfer(Urb urb)
{
    const auto bytes = bytesOf(urb.buffer);
    const auto word
        = [&](size_t at) { return static_cast<uint16_t>(bytes[at] | bytes[at + 1] << 8); };
    DeviceModel::SetupPacket setup{bytes[0], bytes[1], word(2), word(4), word(6)};
    urb.dataOffset = DeviceModel::SetupPacket::kSize;
    const auto stage = bytes.subspan(urb.dataOffset);
    setup.length = static_cast<uint16_t>(std::min<size_t>(setup.length, stage.size()));
    auto reply = device_->control(setup, stage.first(setup.length));
    urb.data = std::move(reply.data);
    urb.transferred = reply.transferred;
    urbs_.finish(std::move(urb), reply.stalled ? -EPIPE : 0);
}

void Usbfs::outputTransfer(Urb urb)
{
    const auto bytes = urb.buffer ? bytesOf(urb.buffer) : std::span<uint8_t>{};
    const bool received = device_->receive(bytes);
    urb.transferred = received ? bytes.size() : 0;
    urbs_.finish(std::move(urb), received ? 0 : -EPIPE);
}

// Results go into umockdev's copy of the client's memory only here, on
// umockdev's thread: written by inject() they would race with the end of
// SUBMITURB, when umockdev sends that copy back to the client.
long Usbfs::reap(UMockdevIoctlClient* client, UMockdevIoctlData* arg)
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
    umockdev_ioctl_data_set_ptr(resolve(arg, 0, sizeof(void*)), 0, urb->request.get());
    return 0;
}

void Usbfs::stateChanged()
{
    if (connected_)
        node_.setReady(urbs_.anyFinished());
    if (urbs_.allInputReaped())
        changed_.notify_all();
}

} // namespace sim
