// A simulated USB HID device that can be plugged in, used, broken and unplugged.
#pragma once

#include "sim/bus/usb_bus.h"

namespace sim {

class UsbDevice {
public:
    static constexpr std::chrono::milliseconds kPatience{10'000};

    // Not plugged in. Takes the bus's next port for good.
    UsbDevice(UsbBus& bus, UsbDeviceInfo info);
    ~UsbDevice(); // unplugs
    UsbDevice(const UsbDevice&) = delete;
    UsbDevice& operator=(const UsbDevice&) = delete;

    const UsbDeviceInfo& info() const { return model_->info; }
    // As hidapi 0.11 and later name the device: "1-1:1.0" on port 1.
    std::string hidPath() const;

    // Not from an output callback. Does nothing to one that is plugged in.
    void plug();
    // Any thread, also from an output callback and in the midst of transfers,
    // but not while another plugs or unplugs on the same bus. When it returns,
    // every transfer has failed. Does nothing to one that is not plugged in.
    void unplug();
    bool isPlugged() const;

    // Queues an input report, as on the wire (so without an id if the device
    // has no report ids), until a client asks for it. False, and the report is
    // lost, while it is unplugged or the kernel's driver has it; also when
    // UrbQueue::kMaxInput are unread. Any thread.
    bool inject(const Bytes& report);
    // Waits until a client's libusb has taken every report injected. hidapi
    // itself keeps the 30 newest that its user has not read and drops older
    // ones, so wait at least every 20 where none may be lost. False when
    // the time is over or the device is gone. Any thread.
    [[nodiscard]] bool waitUntilRead(std::chrono::milliseconds limit = kPatience);

    // The output reports that came, in order: see OutputLog. Report id first;
    // 0 for a device without. A report is here before the client's hid_write()
    // returns. Any thread.
    [[nodiscard]] bool waitForOutputs(size_t count, std::chrono::milliseconds limit = kPatience);
    [[nodiscard]] std::vector<Bytes> takeOutputs() { return model_->outputs.take(); }

    // Called with each of these reports too, on umockdev's thread and before
    // hid_write() returns; no client's call is answered meanwhile. May call
    // inject() and unplug(). See DeviceModel for replacing it.
    void setOutputCallback(DeviceModel::OutputCallback callback);

    // Any thread; holds also over unplugging and plugging in again.
    DeviceFaults& faults() { return model_->faults; }
    const DeviceCounters& counters() const { return model_->counters; }

    // Whether opening the node is permitted; it is at first. For root too, if
    // the client has our preload library.
    void setOpenable(bool openable);
    bool driverBound() const; // the kernel's own driver; false while unplugged
    bool claimed() const;     // by a client

private:
    std::shared_ptr<Usbfs> usbfs() const;

    UsbBus& bus_;
    const int port_;
    const std::shared_ptr<DeviceModel> model_;
    mutable std::mutex mutex_; // guards all below
    bool openable_ = true;
    UsbBus::Place place_;
    std::shared_ptr<Usbfs> usbfs_; // null while unplugged
};

} // namespace sim
