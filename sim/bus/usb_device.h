// A simulated USB HID device that can be plugged in, used, broken and unplugged.
#pragma once

#include "sim/bus/usb_bus.h"

namespace sim {

class UsbDevice {
public:
    static constexpr std::chrono::milliseconds kDefaultTimeout{10'000};

    // Not plugged in. Takes the bus's next port and keeps it.
    UsbDevice(UsbBus& bus, UsbDeviceInfo info);
    ~UsbDevice(); // unplugs
    UsbDevice(const UsbDevice&) = delete;
    UsbDevice& operator=(const UsbDevice&) = delete;

    const UsbDeviceInfo& info() const { return model_->info; }
    // The device's path in hidapi 0.11 and later: "1-1:1.0" on port 1.
    std::string hidPath() const;

    // Not from a callback. Does nothing if the device is plugged in. Throws std::runtime_error.
    void plug();
    // Any thread, including from a callback and during transfers, but not while another thread
    // plugs or unplugs on the same bus. When it returns, every transfer has failed. Does nothing if
    // the device is not plugged in.
    void unplug();
    bool isPlugged() const;

    // Queues an input report, as on the wire (without an id if the device has no report ids), until
    // a client reads it. Returns false, and the report is lost, if the device is unplugged, the
    // kernel's driver has it, or UrbQueue::kMaxInput reports are unread. Any thread.
    bool inject(const Bytes& report);
    // Waits until a client's libusb has read every injected report. hidapi keeps only the 30 newest
    // unread reports, so call this at least every 20 reports if none may be lost. Returns false
    // after the timeout and if the device is unplugged. Any thread.
    [[nodiscard]] bool waitUntilRead(std::chrono::milliseconds timeout = kDefaultTimeout);

    // The output reports that were received, in order: see OutputLog. Report id first, 0 for a
    // device without report ids. A report is added before the client's hid_write() returns. Any
    // thread.
    [[nodiscard]] bool waitForOutputs(
        size_t count, std::chrono::milliseconds timeout = kDefaultTimeout);
    [[nodiscard]] std::vector<Bytes> takeOutputs() { return model_->outputs.take(); }

    // Sets the one callback, for all events or for received output reports only. It runs on
    // umockdev's thread, for an output report before the client's hid_write() returns. Clients wait
    // for their ioctls meanwhile. It may inject, unplug and replace itself. When these return, the
    // previous callback is not running any more, unless they were called from it.
    void setEventCallback(DeviceModel::EventCallback callback);
    void setOutputCallback(std::function<void(const Bytes&)> callback);

    // Any thread. Unplugging does not change these.
    DeviceFaults& faults() { return model_->faults; }
    const DeviceCounters& counters() const { return model_->counters; }

    // Whether opening the node is permitted; at first, yes. Unplugging does not change this. Also
    // applies to root if the client has our preload library.
    void setOpenable(bool openable);
    bool driverBound() const; // whether the kernel's driver has the device; false while unplugged
    bool claimed() const;     // whether a client has the interface

private:
    std::shared_ptr<Usbfs> usbfs() const;

    UsbBus& bus_;
    const int port_;
    const std::shared_ptr<DeviceModel> model_;
    mutable std::mutex mutex_; // guards the fields below
    bool openable_ = true;
    UsbBus::Place place_;
    std::shared_ptr<Usbfs> usbfs_; // null while unplugged
};

} // namespace sim
