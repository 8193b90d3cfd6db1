#include "sim/bus/usb_device.h"

#include "sim/device/reactions.h"

#include <cassert>
#include <utility>

namespace sim {

UsbDevice::UsbDevice(UsbBus& bus, UsbDeviceInfo info)
    : bus_(bus)
    , port_(bus.takePort())
    , model_(std::make_shared<DeviceModel>(std::move(info)))
    , delayed_([this](Panel::InputReport input) { inject(input.report, std::move(input.cause)); })
{
    model_->setReaction([this](const DeviceEvent& event) { react(event); });
}

// umockdev's thread may still use the model for some time.
UsbDevice::~UsbDevice()
{
    unplug();
    model_->setReaction({});
    model_->setEventCallback({});
}

std::string UsbDevice::hidPath(uint8_t interface) const
{
    return "1-" + std::to_string(port_) + ":1." + std::to_string(interface);
}

void UsbDevice::plug()
{
    if (isPlugged())
        return;
    const auto usbfs = std::make_shared<Usbfs>(model_);
    const std::lock_guard lock(mutex_);
    usbfs->setOpenable(openable_);
    place_ = bus_.plug(port_, info(), usbfs);
    usbfs_ = usbfs;
}

void UsbDevice::unplug()
{
    std::shared_ptr<Usbfs> usbfs;
    UsbBus::Place place;
    {
        const std::lock_guard lock(mutex_);
        usbfs.swap(usbfs_);
        place = place_;
    }
    if (!usbfs)
        return;
    bus_.unplug(place, *usbfs);
    for (Panel::InputReport& input : delayed_.takeAll())
        addInputEvent(controlsNumber(), std::move(input), Delivery::kNoListener);
    panel().losePower();
}

bool UsbDevice::isPlugged() const
{
    return usbfs() != nullptr;
}

std::string UsbDevice::node() const
{
    const std::lock_guard lock(mutex_);
    return place_.node;
}

bool UsbDevice::press(std::string_view button)
{
    return send(panel().press(button));
}

bool UsbDevice::release(std::string_view button)
{
    return send(panel().release(button));
}

bool UsbDevice::push(std::string_view button)
{
    return send(panel().push(button));
}

bool UsbDevice::setHook(HookPosition position)
{
    return send(panel().setHook(position));
}

bool UsbDevice::send(std::optional<Panel::InputReports> reports)
{
    if (!reports)
        return false;
    for (Panel::InputReport& input : *reports) {
        input.report = withLengthError(std::move(input.report), info().behaviour.lengthError);
        sendLater(std::move(input));
    }
    return true;
}

void UsbDevice::sendLater(Panel::InputReport input)
{
    const std::chrono::milliseconds delay = info().behaviour.delay;
    if (delay.count() == 0)
        inject(input.report, std::move(input.cause));
    else if (!delayed_.add(input, delay))
        addInputEvent(controlsNumber(), std::move(input), Delivery::kQueueFull);
}

void UsbDevice::react(const DeviceEvent& event)
{
    if (event.interface != controlsNumber())
        return;
    if (event.kind == DeviceEvent::Kind::kOpened) {
        for (Panel::InputReport& input : startUpReports(info().behaviour))
            sendLater(std::move(input));
    }
    for (const LampChange& change : event.lamps) {
        for (Panel::InputReport& input : reactionsTo(change, info().behaviour, panel()))
            sendLater(std::move(input));
    }
}

bool UsbDevice::inject(const Bytes& report, std::string cause)
{
    return inject(controlsNumber(), report, std::move(cause));
}

bool UsbDevice::inject(uint8_t interface, const Bytes& report, std::string cause)
{
    assert(model_->findInterface(interface) && model_->findInterface(interface)->isHid());
    if (const auto plugged = usbfs())
        return plugged->inject(interface, report, std::move(cause)) == Delivery::kQueued;
    addInputEvent(interface, {std::move(cause), report}, Delivery::kNoListener);
    return false;
}

void UsbDevice::addInputEvent(uint8_t interface, Panel::InputReport input, Delivery delivery)
{
    model_->addEvent({.kind = DeviceEvent::Kind::kInput,
        .interface = interface,
        .report = std::move(input.report),
        .cause = std::move(input.cause),
        .delivery = delivery});
    model_->deliverEvents();
}

bool UsbDevice::waitUntilRead(std::chrono::milliseconds timeout)
{
    const auto plugged = usbfs();
    return plugged && plugged->waitUntilRead(timeout);
}

bool UsbDevice::waitForOutputs(size_t count, std::chrono::milliseconds timeout)
{
    return model_->outputs.waitFor(count, timeout);
}

void UsbDevice::setEventCallback(DeviceModel::EventCallback callback)
{
    model_->setEventCallback(std::move(callback));
}

void UsbDevice::setOutputCallback(std::function<void(const Bytes&)> callback)
{
    model_->setEventCallback(
        [callback = std::move(callback), number = controlsNumber()](const DeviceEvent& event) {
            const bool toControls = event.interface == number;
            if (callback && toControls && event.kind == DeviceEvent::Kind::kOutput)
                callback(event.report);
        });
}

void UsbDevice::setOpenable(bool openable)
{
    const std::lock_guard lock(mutex_);
    openable_ = openable;
    if (usbfs_)
        usbfs_->setOpenable(openable);
}

bool UsbDevice::driverBound(uint8_t interface) const
{
    const auto plugged = usbfs();
    return plugged && plugged->driverBound(interface);
}

bool UsbDevice::claimed(uint8_t interface) const
{
    const auto plugged = usbfs();
    return plugged && plugged->claimed(interface);
}

std::shared_ptr<Usbfs> UsbDevice::usbfs() const
{
    const std::lock_guard lock(mutex_);
    return usbfs_;
}

} // namespace sim
