// A simulated USB device that can be plugged in, used, broken and unplugged.
#pragma once

#include "sim/bus/delayed_reports.h"
#include "sim/bus/usb_bus.h"

namespace sim {

// Behaves as its info says: it reacts to what clients do, see DeviceBehaviour.
class UsbDevice {
public:
    static constexpr std::chrono::milliseconds kDefaultTimeout{10'000};

    // Not plugged in. Takes the bus's next port and keeps it.
    UsbDevice(UsbBus& bus, UsbDeviceInfo info);
    ~UsbDevice(); // unplugs; not from a callback
    UsbDevice(const UsbDevice&) = delete;
    UsbDevice& operator=(const UsbDevice&) = delete;

    const UsbDeviceInfo& info() const { return model_->info; }
    // The number of the interface whose controls the panel has. Functions without the number of an
    // interface are about this one.
    uint8_t controlsNumber() const { return model_->controls().number; }
    // The path of the interface in hidapi 0.11 and later: "1-1:1.0" on port 1.
    std::string hidPath() const { return hidPath(controlsNumber()); }
    std::string hidPath(uint8_t interface) const;

    // Not from a callback. Does nothing if the device is plugged in. Throws std::runtime_error.
    void plug();
    // All LEDs are off and all buttons up afterwards: see Panel::losePower(). Any thread, including
    // from a callback and during transfers, but not while another thread plugs or unplugs on the
    // same bus. When it returns, every transfer has failed. Does nothing if the device is not
    // plugged in.
    void unplug();
    bool isPlugged() const;
    // "/dev/bus/usb/001/002"; empty before the device was plugged in for the first time.
    std::string node() const;

    // The state of LEDs and buttons. Any thread. To press buttons, use the functions below: those
    // of the panel send nothing.
    Panel& panel() { return model_->panel; }

    // Press and release buttons by name, as the functions of Panel do, and send the reports. False
    // if the device has no such button. Any thread, including from a callback.
    [[nodiscard]] bool press(std::string_view button);
    [[nodiscard]] bool release(std::string_view button);
    [[nodiscard]] bool push(std::string_view button);
    [[nodiscard]] bool setHook(HookPosition position);

    // Queues an input report, as on the wire (without an id if the interface has no report ids),
    // until a client reads it. Returns false, and the report is lost, if the device is unplugged,
    // the kernel's driver has the interface, or too much is unread (UrbQueue::kMaxInput,
    // kMaxInputBytes); the event of the report shows which. `interface` is the number of one of
    // class HID. Any thread, including from a callback.
    bool inject(const Bytes& report, std::string cause = "raw");
    bool inject(uint8_t interface, const Bytes& report, std::string cause = "raw");
    // Whether the device will send a report by itself, because its behaviour has a delay. Any
    // thread.
    [[nodiscard]] bool hasDelayedReports() { return !delayed_.isEmpty(); }
    // Waits until a client's libusb has read every injected report. hidapi keeps only the 30 newest
    // unread reports, so call this at least every 20 reports if none may be lost. Returns false
    // after the timeout and if the device is unplugged. Any thread.
    [[nodiscard]] bool waitUntilRead(std::chrono::milliseconds timeout = kDefaultTimeout);

    // The output reports that were received, in order: see OutputLog. Report id first, 0 without
    // report ids. A report is added before the client's hid_write() returns. Any thread.
    [[nodiscard]] bool waitForOutputs(
        size_t count, std::chrono::milliseconds timeout = kDefaultTimeout);
    [[nodiscard]] std::vector<Bytes> takeOutputs() { return model_->outputs.take(); }

    // Sets the one callback, for all events of all interfaces or for received output reports only.
    // Events come one at a time, in their order: for an output report before the client's
    // hid_write() returns, while clients wait for their ioctls; for an input report before a
    // reaction to it. The callback runs on umockdev's thread or one that sends a report. It may
    // replace itself, but must not plug, destroy the device, or wait with waitUntilRead() or
    // waitForOutputs(): umockdev's thread serves the clients. When these return, the previous
    // callback is not running any more, unless they were called from it.
    void setEventCallback(DeviceModel::EventCallback callback);
    void setOutputCallback(std::function<void(const Bytes&)> callback);

    // Any thread. Unplugging does not change these.
    DeviceFaults& faults() { return model_->faults; }
    const DeviceCounters& counters() const { return model_->counters; }

    // Whether opening the node is permitted; at first, yes. Unplugging does not change this. Also
    // applies to root if the client has our preload library. Throws std::system_error.
    void setOpenable(bool openable);
    // Whether the kernel's driver has the interface; false while unplugged.
    bool driverBound() const { return driverBound(controlsNumber()); }
    bool driverBound(uint8_t interface) const;
    // Whether a client has the interface.
    bool claimed() const { return claimed(controlsNumber()); }
    bool claimed(uint8_t interface) const;

private:
    std::shared_ptr<Usbfs> usbfs() const;
    void react(const DeviceEvent& event);
    bool send(std::optional<Panel::InputReports> reports);
    void sendLater(Panel::InputReport input);
    void addInputEvent(uint8_t interface, Panel::InputReport input, Delivery delivery);

    UsbBus& bus_;
    const int port_;
    const std::shared_ptr<DeviceModel> model_;
    mutable std::mutex mutex_; // guards the fields below
    bool openable_ = true;
    UsbBus::Place place_;
    std::shared_ptr<Usbfs> usbfs_; // null while unplugged
    DelayedReports delayed_; // not guarded; destroyed first, because its thread uses the others
};

} // namespace sim
