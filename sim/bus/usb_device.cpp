#include "sim/bus/usb_device.h"

#include <utility>

namespace sim {

UsbDevice::UsbDevice(UsbBus& bus, UsbDeviceInfo info)
    : bus_(bus)
    , port_(bus.takePort())
    , model_(std::make_shared<DeviceModel>(std::move(info)))
{
}

// umockdev's thread may still use the model for some time.
UsbDevice::~UsbDevice()
{
    unplug();
    model_->setEventCallback({});
}

std::string UsbDevice::hidPath() const
{
    return "1-" + std::to_string(port_) + ":1." + std::to_string(info().interfaceNumber);
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
    if (usbfs)
        bus_.unplug(place, *usbfs);
}

bool UsbDevice::isPlugged() const
{
    return usbfs() != nullptr;
}

bool UsbDevice::inject(const Bytes& report)
{
    const auto plugged = usbfs();
    return plugged && plugged->inject(report);
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
    model_->setEventCallback([callback = std::move(callback)](const DeviceEvent& event) {
        if (callback && event.kind == DeviceEvent::Kind::kOutput)
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

bool UsbDevice::driverBound() const
{
    const auto plugged = usbfs();
    return plugged && plugged->driverBound();
}

bool UsbDevice::claimed() const
{
    const auto plugged = usbfs();
    return plugged && plugged->claimed();
}

std::shared_ptr<Usbfs> UsbDevice::usbfs() const
{
    const std::lock_guard lock(mutex_);
    return usbfs_;
}

} // namespace sim
