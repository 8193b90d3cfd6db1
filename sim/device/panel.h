// The lamps and buttons on a simulated device's case: what reports mean there,
// and which reports pressing makes.
#pragma once

#include "sim/device/report_fields.h"

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

    // What the device sends for it, in order; nothing if it has no such button.
    // The hook switch changes its position; the others are pressed and released.
    // Every report tells the position of a hook switch that lies in it.
    std::vector<InputReport> press(Button button);
    std::vector<InputReport> moveHook(HookPosition position);

    // A report for floods: only tells the position of the hook switch.
    Bytes idleReport() const;

    // Takes in an output report, report id first, and says which lamps it
    // changed: "ring lamp on, hold lamp off", or "no change". The hook switch
    // follows the off-hook lamp without a report, so that it is in step after a
    // call that was taken or ended on the host.
    std::string light(const Bytes& report);

private:
    const ReportField* find(Button button) const;
    Bytes inputReport(uint8_t reportId) const;

    const ReportFields fields_;
    mutable std::mutex mutex_; // guards all below
    HookPosition hook_ = HookPosition::kOnHook;
    std::set<uint16_t> lit_; // LED usages
};

} // namespace sim
