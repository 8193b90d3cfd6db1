// An input report with the state of a simulated device's buttons. Pure.
#pragma once

#include "report/layout.h"
#include "sim/device/wire_bytes.h"

namespace sim {

// True if a report can hold that the control is on.
[[nodiscard]] bool hasControl(const report::Field& field, report::Usage usage);

class ButtonReport {
public:
    // Every button is off. `layout` must outlive the object.
    ButtonReport(const report::Layout& layout, uint8_t id);

    // `field` is one of this report, and has the control.
    void switchOn(const report::Field& field, report::Usage usage);

    [[nodiscard]] Bytes bytes() const; // as on the wire

private:
    void write(const report::Field& field, uint64_t index, uint64_t value);

    const bool hasId_;
    const uint8_t id_;
    Bytes payload_;
    std::map<const report::Field*, uint64_t> pressed_; // number of buttons in each array
};

} // namespace sim
