#include "tools/ctl/usb/hotplug.h"

#include "tools/ctl/cli/failure.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

namespace ctl {
namespace {

std::vector<pollfd> descriptorsOf(libusb_context* context)
{
    const std::unique_ptr<const libusb_pollfd*, Release<libusb_free_pollfds>> list(
        libusb_get_pollfds(context));
    std::vector<pollfd> descriptors;
    for (auto entry = list.get(); entry && *entry; ++entry)
        descriptors.push_back({(*entry)->fd, (*entry)->events, 0});
    return descriptors;
}

} // namespace

Hotplug::Hotplug(libusb_context* context)
    : context_(context)
{
    const int events = LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED | LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT;
    const int error = libusb_hotplug_register_callback(context, events, 0, LIBUSB_HOTPLUG_MATCH_ANY,
        LIBUSB_HOTPLUG_MATCH_ANY, LIBUSB_HOTPLUG_MATCH_ANY, onEvent, this, &registration_);
    if (error)
        throw Failure(kNoAccess,
            std::string("this system does not report plug and unplug: ") + libusb_strerror(error));
}

Hotplug::~Hotplug()
{
    libusb_hotplug_deregister_callback(context_, registration_);
}

void Hotplug::wait(std::span<pollfd> others, int milliseconds)
{
    std::vector<pollfd> all = descriptorsOf(context_);
    const size_t own = all.size();
    all.insert(all.end(), others.begin(), others.end());
    // A signal that interrupts poll() is among `others`.
    (void)poll(all.data(), all.size(), milliseconds);
    std::copy(all.begin() + static_cast<std::ptrdiff_t>(own), all.end(), others.begin());
    timeval none{};
    (void)libusb_handle_events_timeout_completed(context_, &none, nullptr);
}

std::vector<Hotplug::Event> Hotplug::take()
{
    return std::exchange(events_, {});
}

// Must not use the device: libusb is in the middle of handling its events.
int Hotplug::onEvent(libusb_context*, libusb_device* device, libusb_hotplug_event event, void* self)
{
    const bool arrived = event == LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED;
    static_cast<Hotplug*>(self)->events_.push_back(
        {arrived, UsbDeviceRef(libusb_ref_device(device))});
    return 0; // stay registered
}

} // namespace ctl
