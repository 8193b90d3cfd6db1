// The input reports that a device sends because of what a client did. Pure.
#pragma once

#include "sim/device/panel.h"

namespace sim {

// For an LED that changed on the panel, which belongs to a device of that behaviour. In order:
// acknowledgement, mute button, the reactions.
[[nodiscard]] Panel::InputReports reactionsTo(
    const LampChange& change, const DeviceBehaviour& behaviour, Panel& panel);

// When a client begins to read from the interface.
[[nodiscard]] Panel::InputReports startUpReports(const DeviceBehaviour& behaviour);

// Makes the report longer or shorter: see DeviceBehaviour::lengthError.
[[nodiscard]] Bytes withLengthError(Bytes report, int lengthError);

} // namespace sim
