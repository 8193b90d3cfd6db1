// The faults of a device that the bench switches on and off, by name.
#pragma once

#include "sim/bench/command.h"
#include "sim/bus/usb_device.h"

namespace sim {

// Same thread as the bench.
class FaultSwitches {
public:
    // `device` must outlive the object.
    explicit FaultSwitches(UsbDevice& device);

    // `number` is how many times the operation fails, or the length for "short". Without one it
    // always fails.
    CommandResult switchOn(std::string_view name, std::optional<int> number);
    CommandResult switchOff(std::string_view name);
    void switchAllOff();

    // The faults that were switched on or off, also by themselves, since the last call.
    struct Change {
        std::string_view name;
        bool armed;
    };
    [[nodiscard]] std::vector<Change> takeChanges();

    [[nodiscard]] Json::Value json() const; // as in `devices --json`

    // The bench does these itself.
    static constexpr std::string_view kFlood = "flood";
    static constexpr std::string_view kNone = "none";

    struct Switch; // an entry of the table of faults

private:
    void setOpenRefused(bool refused);
    [[nodiscard]] bool isArmed(const Switch& entry) const;
    Fault* fault(const Switch& entry) const; // null for "open"

    UsbDevice& device_;
    bool openRefused_ = false;
    std::vector<bool> armed_; // as takeChanges() has returned them
};

} // namespace sim
