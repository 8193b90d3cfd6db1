// The LEDs and buttons of a simulated device.
#pragma once

#include "report/meaning.h"
#include "sim/device/device_behaviour.h"
#include "sim/device/device_event.h"
#include "sim/device/panel_controls.h"

#include <mutex>
#include <optional>
#include <vector>

namespace sim {

// The names from usb.ids, empty without that file. The first call reads it, which takes some
// milliseconds. Any thread.
const report::UsageNames& systemUsageNames();

// Has the controls that findButtons() and findLamps() find. Each has a name that no other button,
// or no other LED, has: "hook", "flash", "mute" and "busy" are the telephony buttons, "mute",
// "off-hook", "ring", "speaker", "hold", "microphone" and "on-line" the telephony LEDs.
//
// Any thread may call any of these.
class Panel {
public:
    struct ButtonState {
        std::string name;
        std::string label; // for people: "Hook Switch"
        report::Usage usage;
        bool isSwitch = false; // keeps its position: the hook switch, unless it is momentary
        bool pressed = false;  // of a switch: off-hook
    };

    struct LampInfo {
        std::string name;
        std::string label;
        report::Usage usage;
        bool on = false;
    };

    struct InputReport {
        std::string cause; // "mute pressed", "hook off"
        Bytes report;      // as on the wire
    };
    using InputReports = std::vector<InputReport>;

    // `names` must outlive the object.
    explicit Panel(const Bytes& reportDescriptor, HookSwitch hookSwitch = HookSwitch::kFollowsLamp,
        const report::UsageNames& names = systemUsageNames());

    // In the order of the descriptor.
    [[nodiscard]] std::vector<ButtonState> buttons() const;
    [[nodiscard]] std::vector<LampInfo> lamps() const;
    [[nodiscard]] bool hasButton(std::string_view name) const;
    // No value without a hook switch that keeps its position.
    [[nodiscard]] std::optional<HookPosition> hook() const;

    // Return the input reports that the device sends, in order; no value if it has no such button.
    // Each report also has the other buttons that are down and the position of the hook switch, if
    // they are in it.
    //
    // press() keeps the button down until release(). push() does both. A hook switch that keeps its
    // position is off-hook when pressed, and push() moves it to the other position. setHook() moves
    // it to that one; a momentary hook switch is pushed.
    [[nodiscard]] std::optional<InputReports> press(std::string_view button);
    [[nodiscard]] std::optional<InputReports> release(std::string_view button);
    [[nodiscard]] std::optional<InputReports> push(std::string_view button);
    [[nodiscard]] std::optional<InputReports> setHook(HookPosition position);

    // The input report that has the button, with the present state of all buttons. No value if
    // there is no such button.
    [[nodiscard]] std::optional<Bytes> reportOf(std::string_view button) const;
    // An input report of the descriptor, with the present state of all buttons.
    [[nodiscard]] Bytes inputReport(uint8_t id) const;
    // The input report with the hook switch, else the one with the lowest id.
    [[nodiscard]] Bytes stateReport() const;

    // Takes an output report, report id first, and returns which LEDs it changed, in the order of
    // the descriptor. Those that are beyond its end are off.
    std::vector<LampChange> applyOutput(const Bytes& report);

    // Switches all LEDs off and releases all buttons. A hook switch that keeps its position only
    // moves if it follows the off-hook LED.
    void losePower();

    // What a report means: "Hook Switch on". Only what changed since the last report of the same
    // kind and id that was passed, or since forgetReports(); empty if nothing did. Input reports as
    // on the wire, others with the id first.
    [[nodiscard]] std::vector<std::string> meaning(report::ReportKind kind, const Bytes& report);
    // To be called after losePower(), when all earlier reports have been passed to meaning().
    void forgetReports();

private:
    // The caller holds the lock.
    [[nodiscard]] const Control* find(std::string_view button) const;
    [[nodiscard]] bool isSwitch(const Control& button) const;
    [[nodiscard]] bool isPressed(const Control& button) const;
    InputReport set(const Control& button, bool pressed);
    void switchLamp(size_t index, bool on);
    [[nodiscard]] Bytes reportWithId(uint8_t reportId) const;

    const report::Layout layout_;
    const HookSwitch hookSwitch_;
    const report::UsageNames& names_;
    const std::vector<Control> buttons_; // both belong to the layout
    const std::vector<Control> lampControls_;
    mutable std::mutex mutex_;                 // guards the fields below
    std::optional<report::ReportWords> words_; // never empty
    std::vector<const Control*> pressed_;      // of buttons_, the latest last
    std::vector<bool> lamps_;                  // of lampControls_: whether it is on
};

} // namespace sim
