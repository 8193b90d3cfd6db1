// The device's own side of the bus: what its firmware answers and what it
// receives, whether it is plugged in at the moment or not.
#pragma once

#include "sim/device/device_faults.h"
#include "sim/device/output_log.h"
#include "sim/device/usb_device_info.h"

#include <functional>
#include <mutex>
#include <span>

namespace sim {

struct DeviceCounters {
    std::atomic<int> reportDescriptorReads = 0; // requests, answered or not
    std::atomic<int> claims = 0;                // that succeeded
    std::atomic<int> releases = 0;              // also by a client that went away
};

class DeviceModel {
public:
    using OutputCallback = std::function<void(const Bytes&)>;

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
        size_t transferred = 0; // bytes of either direction, setup packet not counted
    };

    explicit DeviceModel(UsbDeviceInfo info);

    // Answers for the device and its one interface: the host sees to it that a
    // request to an interface means that one. `out` is the data stage of a
    // host-to-device transfer.
    ControlReply control(const SetupPacket& setup, std::span<const uint8_t> out);

    // An output report as it came through the OUT endpoint. False is a stall.
    [[nodiscard]] bool receive(std::span<const uint8_t> wire);

    // Hands reports that came since the last call to the callback. Separate
    // from receiving so that the caller holds no lock of its own meanwhile.
    void notify();

    // Replaces the callback. Afterwards the earlier one is not running and will
    // not run again, unless this is called from inside it.
    void setOutputCallback(OutputCallback callback);

    const UsbDeviceInfo info;
    const bool numbered; // reports start with their id
    DeviceFaults faults;
    DeviceCounters counters;
    // Reports as hid_write() takes them: the report id first, which is 0 if the
    // device has none and then is not on the wire.
    OutputLog outputs;

private:
    ControlReply getDescriptor(const SetupPacket& setup);
    ControlReply getReportDescriptor(const SetupPacket& setup);
    ControlReply setReport(const SetupPacket& setup, std::span<const uint8_t> out);

    std::mutex pendingMutex_;
    std::vector<Bytes> pending_;         // for the callback
    std::recursive_mutex callbackMutex_; // held while the callback runs
    OutputCallback callback_;
};

} // namespace sim
