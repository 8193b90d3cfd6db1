// The device's side of the bus: its responses and the reports that it receives.
#pragma once

#include "sim/device/device_faults.h"
#include "sim/device/output_log.h"
#include "sim/device/usb_device_info.h"

#include <functional>
#include <mutex>
#include <span>

namespace sim {

// Something that a client did with the device.
struct DeviceEvent {
    enum class Kind {
        kOutput,        // an output report was received
        kOutputRefused, // an output report stalled
        kClaimRefused,  // claiming the interface gave EBUSY
        kDetachRefused, // detaching the kernel driver gave EBUSY
    };

    Kind kind = Kind::kOutput;
    Bytes report = {}; // as in DeviceModel::outputs; empty if no report is concerned
};

struct DeviceCounters {
    std::atomic<int> reportDescriptorReads = 0; // requests, including those that stalled
    std::atomic<int> claims = 0;                // successful ones
    std::atomic<int> releases = 0;              // including those by clients that ended
};

// Any thread may call any of these.
class DeviceModel {
public:
    using EventCallback = std::function<void(const DeviceEvent&)>;

    struct SetupPacket {
        static constexpr size_t kSize = 8;
        static SetupPacket from(std::span<const uint8_t> bytes); // at least kSize of them

        bool toInterface() const { return (requestType & 0x1f) == 1; }

        uint8_t requestType = 0;
        uint8_t request = 0;
        uint16_t value = 0;
        uint16_t index = 0;
        uint16_t length = 0;
    };

    struct ControlReply {
        bool stalled = false;
        Bytes data = {};        // of an IN transfer
        size_t transferred = 0; // bytes of either direction, without the setup packet
    };

    explicit DeviceModel(UsbDeviceInfo info);

    // Handles requests to the device and to its interface; the caller has checked the interface
    // number. `out` is the data stage of a host-to-device transfer.
    ControlReply control(const SetupPacket& setup, std::span<const uint8_t> out);

    // Takes an output report that came through the OUT endpoint. False if it stalls.
    [[nodiscard]] bool receive(std::span<const uint8_t> wire);

    // Adds an event for the callback. notify() calls the callback for each event since the last
    // call, in their order; the caller must hold no lock that the callback may need.
    void addEvent(DeviceEvent event);
    void notify();

    // Replaces the callback. When this returns, the previous callback is not running and will not
    // run again, unless this was called from it.
    void setEventCallback(EventCallback callback);

    const UsbDeviceInfo info;
    const bool hasReportIds; // every report starts with its id
    DeviceFaults faults;
    DeviceCounters counters;
    // Reports as hid_write() takes them: report id first, 0 for a device without report ids (where
    // it is not on the wire).
    OutputLog outputs;

private:
    ControlReply getDescriptor(const SetupPacket& setup);
    ControlReply getReportDescriptor(const SetupPacket& setup);
    ControlReply setReport(const SetupPacket& setup, std::span<const uint8_t> out);

    std::mutex eventsMutex_;
    std::vector<DeviceEvent> events_;    // not yet handed to the callback
    std::recursive_mutex callbackMutex_; // held while the callback runs
    EventCallback callback_;
};

} // namespace sim
