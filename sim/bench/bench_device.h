// A device on the bench.
#pragma once

#include "sim/bench/command.h"
#include "sim/bench/device_lamps.h"
#include "sim/bench/event_queue.h"
#include "sim/bench/fault_switches.h"
#include "sim/bus/usb_device.h"
#include "sim/profile/profile.h"

namespace sim {

enum class Press { kPush, kHold };

// Operates a device and reports what happens to it. Only the bench's thread may use it.
class BenchDevice {
public:
    // Plugs in. `number` counts from 1. `queue` must outlive the object. Throws std::runtime_error.
    BenchDevice(UsbBus& bus, const Profile& profile, size_t number, EventQueue& queue);
    BenchDevice(const BenchDevice&) = delete;
    BenchDevice& operator=(const BenchDevice&) = delete;

    // Commands. Those that send a report fail if the device is unplugged or has no HID interface;
    // no button and no hook switch moves then.
    CommandResult press(std::string_view button, Press press);
    CommandResult release(std::string_view button);
    CommandResult sendRaw(const Bytes& report);
    CommandResult unplug();
    CommandResult replug();
    // `number` is empty, a number, or "off".
    CommandResult setFault(std::string_view name, std::string_view number);
    void sendRecorded(const Bytes& report); // of a device with a HID interface
    void note(const std::string& text);     // adds a line to the transcript

    // "/dev/bus/usb/001/002"
    [[nodiscard]] bool hasNode(std::string_view path) const { return device_.node() == path; }
    void reportRefusedOpen() { add(BenchEvent::Kind::kOpenRefused); }

    // Returns the event with its meaning, followed by the events that it causes, of lamps for
    // example. To be called with each event of the queue, in order; the state below is the one
    // after that event.
    [[nodiscard]] std::vector<BenchEvent> complete(BenchEvent event);

    [[nodiscard]] size_t number() const { return number_; }
    [[nodiscard]] bool isOpen() const { return open_; }
    [[nodiscard]] std::chrono::microseconds lastReport() const { return lastReport_; }
    [[nodiscard]] DeviceLamps& lamps() { return lamps_; }
    [[nodiscard]] bool hasReportsToSend(); // after the device's delay
    [[nodiscard]] bool allRead();          // whether a program has read every input report
    [[nodiscard]] const Bytes& reportDescriptor() const;

    // From blinkCheck() on, adds an event to the queue with which complete() finds lamps that no
    // longer blink.
    void announceLamps();
    [[nodiscard]] std::optional<std::chrono::microseconds> blinkCheck() const;

    [[nodiscard]] Json::Value json();    // as in `devices --json`
    [[nodiscard]] std::string summary(); // a line, printable

private:
    [[nodiscard]] std::string hookText() const; // "on", "off"; empty without a hook switch
    void add(BenchEvent::Kind kind, std::string name = {}, std::string state = {});
    void announceHook();
    void addDeviceEvent(const DeviceEvent& event);
    void explain(BenchEvent& event);
    CommandResult flood(int reports);
    CommandResult noButton(std::string_view name);
    [[nodiscard]] CommandResult checkCanSend() const;
    [[nodiscard]] CommandResult checkButton(std::string_view name); // and that there is one

    const Profile profile_;
    const size_t number_;
    EventQueue& queue_;
    UsbDevice device_; // its callback uses this and the fields above only
    DeviceLamps lamps_;
    FaultSwitches faults_;
    bool open_ = false; // this and the next two: as the latest event has it
    bool plugged_ = true;
    std::optional<HookPosition> hook_;
    std::chrono::microseconds lastReport_{};
    std::chrono::microseconds lampsUpdated_{};
};

} // namespace sim
