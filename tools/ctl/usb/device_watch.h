// Follows HID devices as they are plugged in and unplugged.
#pragma once

#include "tools/ctl/cli/stop_signals.h"
#include "tools/ctl/usb/device_scan.h"
#include "tools/ctl/usb/hotplug.h"

#include <chrono>
#include <functional>
#include <map>
#include <utility>

namespace ctl {

// For one thread.
class DeviceWatch {
public:
    enum class Change {
        kPresent, // was there at the start
        kAdded,   // its number is 0, because numbers change with every plug
        kRemoved, // the entry is that of kPresent or kAdded
    };
    using Callback = std::function<void(Change, const DeviceEntry&)>;

    // `stop` must outlive the object.
    DeviceWatch(const StopSignals& stop, Callback callback);

    // Calls the callback on this thread, for each HID interface of a device, until a signal
    // arrives. A new device is given some time in which the system sets its permissions and binds
    // its driver. A device that is unplugged within that time may never be reported. To be called
    // once. Throws Failure if USB cannot be used, or if the reader of standard output has gone.
    // What the callback throws ends the watch.
    void run();

private:
    using Key = std::pair<uint8_t, uint8_t>; // bus and address, unique while the device is there
    using Clock = std::chrono::steady_clock;

    struct NewDevice {
        UsbDeviceRef device;
        Clock::time_point deadline;
    };

    static Key keyOf(libusb_device* device);
    void reportPresent(libusb_context* context);
    void report(Change change, ScannedDevice& device);
    void handle(Hotplug::Event event);
    void remove(libusb_device* device);
    void reportReady();

    const StopSignals& stop_;
    const Callback callback_;
    std::map<Key, std::vector<DeviceEntry>> reported_;
    std::vector<NewDevice> new_; // not yet reported
};

} // namespace ctl
