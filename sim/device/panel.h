// The LEDs and buttons of a simulated device.
#pragma once

#include "report/layout.h"
#include "sim/device/wire_bytes.h"

#include <mutex>
#include <set>
#include <string>

namespace sim {

enum class Button : uint16_t { kHook = 0x20, kFlash = 0x21, kMute = 0x2f, kBusy = 0x97 }; // usages
enum class HookPosition { kOnHook, kOffHook };

// Any thread may call any of these.
class Panel {
public:
    explicit Panel(const Bytes& reportDescriptor);

    struct InputReport {
        std::string what; // "mute pressed"
        Bytes report;     // as on the wire
    };

    // Return the input reports of a press, in order; none if the device has no such button. The
    // hook switch changes its position ("hook switch off"); the other buttons are pressed and
    // released. Each report also holds the position of the hook switch if that is in it.
    std::vector<InputReport> press(Button button);
    std::vector<InputReport> setHook(HookPosition position);

    // An input report with every button released.
    Bytes idleReport() const;

    // Takes an output report, report id first, and returns which LEDs it changed: "ring LED on,
    // hold LED off", or "no change". The hook switch follows the off-hook LED, so its position is
    // right after a call was answered or ended on the host.
    std::string applyOutput(const Bytes& report);

private:
    struct LedState {
        uint16_t usage;
        bool on;
    };

    // The caller holds the lock.
    std::vector<InputReport> moveHook(HookPosition position);
    std::vector<LedState> ledsIn(const Bytes& report) const;
    Bytes inputReport(uint8_t reportId, std::optional<Button> pressed = {}) const;

    // The field with the button; null if there is none.
    const report::Field* find(Button button) const;

    const report::Layout layout_;
    mutable std::mutex mutex_; // guards the fields below
    HookPosition hook_ = HookPosition::kOnHook;
    std::set<uint16_t> lit_; // LED usages
};

} // namespace sim
