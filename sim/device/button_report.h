// An input report with the state of a simulated device's buttons. Pure.
#pragma once

#include "sim/device/panel_controls.h"
#include "sim/device/wire_bytes.h"

namespace sim {

class ButtonReport {
public:
    // Every button is off. `layout` must outlive the object.
    ButtonReport(const report::Layout& layout, uint8_t id);

    // The button is one of this report. In a full array it replaces the one that came first.
    void switchOn(const Control& button);

    [[nodiscard]] Bytes bytes() const; // as on the wire

private:
    void write(const report::Field& field, uint64_t index, uint64_t value);

    const bool hasId_;
    const uint8_t id_;
    Bytes payload_;
    std::map<const report::Field*, uint64_t> pressed_; // number of buttons in each array
};

} // namespace sim
