// The device's side of the bus: its responses and the reports that it receives.
#pragma once

#include "sim/device/device_event.h"
#include "sim/device/device_faults.h"
#include "sim/device/output_log.h"
#include "sim/device/panel.h"
#include "sim/device/usb_device_info.h"

#include <functional>
#include <map>
#include <mutex>
#include <span>

namespace sim {

// Of all interfaces together.
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

    explicit DeviceModel(UsbDeviceInfo info); // asserts that interface numbers differ

    // Handles requests to the device and to an interface. Those for the report descriptor and for
    // reports stall if the interface does not exist or is not of class HID. A feature report that
    // was not set has only zeros. `out` is the data stage of a host-to-device transfer.
    ControlReply control(const SetupPacket& setup, std::span<const uint8_t> out);

    // Takes an output report that came through the OUT endpoint of the interface. False if it
    // stalls.
    [[nodiscard]] bool receive(const InterfaceInfo& interface, std::span<const uint8_t> wire);

    // Null if there is no such interface.
    [[nodiscard]] const InterfaceInfo* findInterface(unsigned number) const;
    // The one whose controls the panel has.
    [[nodiscard]] const InterfaceInfo& controls() const { return controls_; }

    // Adds an event for the callback, with the present position of the hook switch.
    void addEvent(DeviceEvent event);
    // Calls the callback for each event that was added, in order. The caller must hold no lock that
    // the callback may need. waitForEvents() returns when it has been called for all of them,
    // unless it is called from the callback. deliverEvents() does not wait: if another thread calls
    // the callback at the moment, that thread does the rest.
    void waitForEvents();
    void deliverEvents();

    // Replaces the callback. When this returns, the previous callback is not running and will not
    // run again, unless this was called from it.
    void setEventCallback(EventCallback callback);
    // Likewise a callback that is called after that one: what the device itself does.
    void setReaction(EventCallback reaction);

    const UsbDeviceInfo info;
    DeviceFaults faults;
    DeviceCounters counters;
    Panel panel;
    // Reports to the interface controls(), as hid_write() takes them: report id first, 0 for an
    // interface without report ids (where it is not on the wire).
    OutputLog outputs;

private:
    [[nodiscard]] bool fails(Fault& fault); // whether a request fails; adds an event if so
    ControlReply getDescriptor(const SetupPacket& setup);
    ControlReply getReportDescriptor(const SetupPacket& setup);
    ControlReply getReport(const SetupPacket& setup);
    ControlReply setReport(const SetupPacket& setup, std::span<const uint8_t> out);
    [[nodiscard]] bool receiveFeature(
        const InterfaceInfo& interface, uint8_t id, std::span<const uint8_t> wire);
    [[nodiscard]] Bytes withId(const InterfaceInfo& interface, std::span<const uint8_t> wire) const;
    [[nodiscard]] bool hasEvents();
    std::vector<DeviceEvent> takeEvents();
    void callForEvents(); // callbackMutex_ is held

    const InterfaceInfo& controls_;        // of info
    const std::vector<bool> hasReportIds_; // of each interface: every report starts with its id

    std::mutex featuresMutex_;
    // The feature reports that were set, as on the wire, by interface number and report id.
    std::map<std::pair<uint8_t, uint8_t>, Bytes> features_;

    std::mutex eventsMutex_;
    std::vector<DeviceEvent> events_;    // not yet handed to the callback
    std::recursive_mutex callbackMutex_; // held while the callback runs
    bool calling_ = false;               // guarded by callbackMutex_, as is the callback
    EventCallback callback_;
    EventCallback reaction_;
};

} // namespace sim
