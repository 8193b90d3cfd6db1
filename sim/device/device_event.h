// Something that a client did with a device, or that the device sent.
#pragma once

#include "sim/device/wire_bytes.h"

#include <optional>
#include <string>
#include <vector>

namespace sim {

enum class HookPosition { kOnHook, kOffHook };

// An LED that was switched, by its name in the panel.
struct LampChange {
    std::string lamp;
    bool on = false;

    bool operator==(const LampChange&) const = default;
};

// What became of an input report.
enum class Delivery {
    kQueued,     // a program reads it, or will
    kNoListener, // lost: the kernel's driver has the interface, or the device is unplugged
    kQueueFull,  // lost: too much is unread, see UrbQueue
};

struct DeviceEvent {
    enum class Kind {
        kInput,         // an input report was sent
        kOutput,        // an output report was received
        kOutputRefused, // an output report stalled
        kOpened,        // a client reads from the interface
        kClosed,        // the client released it or ended, or the device was unplugged
        kClaimRefused,  // claiming the interface gave EBUSY
        kDetachRefused, // detaching the kernel driver gave EBUSY
        kFeature,       // a feature report was received
        kRequestFailed, // reading a descriptor failed, because a fault says so
    };

    Kind kind = Kind::kOutput;
    uint8_t interface = 0; // number
    // Input: as on the wire. Output: as in DeviceModel::outputs. Empty if no report is concerned.
    Bytes report = {};
    std::string cause = {};                // of an input report: "mute pressed", "hook off", "raw"
    Delivery delivery = Delivery::kQueued; // of an input report
    std::vector<LampChange> lamps = {};    // of an output report: those that it changed
    // At the event. No value without a hook switch that keeps its position.
    std::optional<HookPosition> hook = {};
};

} // namespace sim
