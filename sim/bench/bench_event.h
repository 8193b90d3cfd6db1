// What happens on the bench.
#pragma once

#include "sim/device/device_event.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Json {
class Value;
}

namespace sim {

struct BenchEvent {
    enum class Kind : uint8_t {
        kInput,         // the device sent a report
        kOutput,        // it received an output report
        kFeature,       // it received a feature report
        kWriteRefused,  // it refused an output report
        kOpenRefused,   // a program was not permitted to open the node
        kClaimRefused,  // claiming the telephony interface failed
        kDetachRefused, // detaching the kernel's driver from it failed
        kOpened,        // a program reads from the telephony interface
        kClosed,        // it has released the interface or ended, or the device was unplugged
        kPlugged,
        kUnplugged,
        kHook,  // the hook switch has another position
        kLamp,  // a lamp is on, off or blinks
        kFault, // a fault was switched on or off
        kNote,  // a line for people
    };

    // Causes of input reports whose meaning is shown.
    static constexpr const char* kRawCause = "raw";
    static constexpr const char* kRecordedCause = "recorded";

    size_t device = 0; // number, from 1
    Kind kind = Kind::kNote;
    std::chrono::microseconds time{}; // since the bench started

    std::optional<uint8_t> interface = {}; // number, if not the one whose controls are listed

    Bytes report = {};                     // input: as on the wire; others: report id first
    std::vector<std::string> meaning = {}; // of the report: what it changed
    std::vector<LampChange> changes = {};  // of an output report
    std::string cause = {};                // of an input report, and of a hook event after it
    Delivery delivery = Delivery::kQueued; // of an input report
    size_t count = 1;                      // it was sent so many times

    // The position when a device added the event; no value for the bench's own events.
    std::optional<HookPosition> hook = {};
    std::string name = {};  // of the lamp or fault; the text of a note
    std::string state = {}; // of the hook or fault: "on", "off"; of a lamp also "blink"
};

// The name of the kind in JSON: "write-refused".
[[nodiscard]] std::string nameOf(BenchEvent::Kind kind);

[[nodiscard]] Json::Value toJson(const BenchEvent& event);

// A line for people: "   0.512345  out  03 08 00     ring on". Events that another line contains
// already give an empty text: a lamp, and a hook switch that was moved by hand. Numbered: the
// device's number is after the time.
enum class Numbered { kNo, kYes };
[[nodiscard]] std::string toText(const BenchEvent& event, Numbered numbered);

} // namespace sim
