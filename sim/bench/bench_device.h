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
    ~BenchDevice();
    BenchDevice(const BenchDevice&) = delete;
    BenchDevice& operator=(const BenchDevice&) = delete;

    // Commands.
    CommandResult press(std::string_view button, Press press);
    CommandResult release(std::string_view button);
    CommandResult sendRaw(const Bytes& report);
    CommandResult unplug();
    CommandResult replug();
    // `number` is empty, a number, or "off".
    CommandResult setFault(std::string_view name, std::string_view number);
    void sendRecorded(const Bytes& report);
    void note(const std::string& text); // adds a line to the transcript

    // "/dev/bus/usb/001/002"
    [[nodiscard]] bool hasNode(std::string_view path) const { return device_.node() == path; }
    void reportRefusedOpen() { add(BenchEvent::Kind::kOpenRefused); }

    // What an event of this device comes to: the event with its meaning, and those that follow from
    // it, of a lamp for example. To be called with each event of the queue, in order; the state
    // below is the one after that event.
    [[nodiscard]] std::vector<BenchEvent> complete(BenchEvent event);

    [[nodiscard]] size_t number() const { return number_; }
    [[nodiscard]] bool isOpen() const { return open_; }
    [[nodiscard]] std::chrono::microseconds lastReport() const { return lastReport_; }
    [[nodiscard]] DeviceLamps& lamps() { return lamps_; }
    [[nodiscard]] bool allRead(); // whether a program has read every input report
    [[nodiscard]] const Bytes& reportDescriptor() const;

    // From blinkCheck() on, adds an event to the queue with which complete() finds lamps that no
    // longer blink.
    void announceLamps();
    [[nodiscard]] std::optional<std::chrono::microseconds> blinkCheck() const;

    [[nodiscard]] Json::Value json();     // as in `devices --json`
    [[nodiscard]] std::string summary();  // a line, printable
    [[nodiscard]] std::string hookText(); // "on", "off"; empty without a hook switch

private:
    void add(BenchEvent::Kind kind, std::string name = {}, std::string state = {});
    void addDeviceEvent(const DeviceEvent& event);
    void explain(BenchEvent& event);
    CommandResult flood(int reports);
    CommandResult noButton(std::string_view name);

    const Profile profile_;
    const size_t number_;
    EventQueue& queue_;
    UsbDevice device_;
    DeviceLamps lamps_;
    FaultSwitches faults_;
    bool open_ = false;
    std::string hook_; // as the latest event has it
    std::chrono::microseconds lastReport_{};
    std::chrono::microseconds lampsUpdated_{};
};

} // namespace sim
