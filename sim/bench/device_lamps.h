// The lamps of a device as they were after the latest event.
#pragma once

#include "sim/bench/bench_event.h"
#include "sim/bench/lamp.h"
#include "sim/device/panel.h"

#include <map>

namespace Json {
class Value;
}

namespace sim {

[[nodiscard]] std::string nameOf(LampState state); // "off", "on", "blink"

// Pure: all times are passed, and never go back. Not locked.
class DeviceLamps {
public:
    using Time = Lamp::Time; // since the bench started

    // All are off.
    explicit DeviceLamps(std::vector<Panel::LampInfo> lamps);

    // Applies the changes of an output report. Returns the lamps whose state changed with it.
    struct Change {
        std::string lamp;
        LampState state;
    };
    [[nodiscard]] std::vector<Change> apply(const std::vector<LampChange>& changes, Time now);

    // Switches all lamps off at once, as a device without power does; none blinks. Returns
    // likewise.
    [[nodiscard]] std::vector<Change> switchAllOff();

    // The lamps whose state changed by the time alone.
    [[nodiscard]] std::vector<Change> update(Time now);

    [[nodiscard]] bool anyBlinks() const;
    // No value if there is no such lamp.
    [[nodiscard]] std::optional<LampState> state(std::string_view lamp) const;
    [[nodiscard]] std::vector<std::string_view> names() const;
    [[nodiscard]] Json::Value json() const; // as in `devices --json`

private:
    struct Entry {
        Panel::LampInfo info;
        Lamp lamp = {};
        LampState state = LampState::kOff; // the latest
    };
    std::vector<Entry> entries_; // in the order of the descriptor
};

} // namespace sim
