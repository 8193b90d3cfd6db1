// What the stack makes of each of the eight controls of a device, and why it lacks those that it
// lacks. Pure.
#pragma once

#include "hid/model/TelephonyControls.h"
#include "report/usage_names.h"
#include "tools/ctl/explain/control.h"

#include <optional>
#include <string>
#include <vector>

namespace ctl {

// libusb refuses to read more of a device's report descriptor.
inline constexpr size_t kMaxReadableSize = 4096;

// A fixed word for programs and sentences for people. docs/kelprobectl-json.md lists the words.
struct Remark {
    const char* word;
    std::string text;
};

struct ControlEntry {
    // The stack's own mask or report, byte for byte. It begins with the report id. If there is none
    // in the Headset collection, a mask has no byte for it, and an output report begins with 0.
    std::optional<KX::Bytes> report;
    uint8_t reportId = 0;         // of `report`, 0 if it has none
    std::optional<Remark> reason; // why there is no report; set exactly if there is none
    // What else has to change in the descriptor before the stack finds the control.
    std::vector<Remark> furtherReasons;
    // Where the stack's bit or report is not the one that the descriptor gives.
    std::vector<Remark> notes;
};

class ControlMap {
public:
    // `layout` is that of the device, `descriptor` the one that the stack uses for it. Takes any
    // bytes.
    ControlMap(std::span<const uint8_t> descriptor, const report::Layout& layout,
        const report::UsageNames& names);

    [[nodiscard]] const ControlEntry& operator[](ControlId control) const
    {
        return entries_[static_cast<size_t>(control)];
    }

    // What the stack uses.
    [[nodiscard]] const KX::TelephonyControls& stackControls() const { return controls_; }

private:
    KX::TelephonyControls controls_;
    std::array<ControlEntry, kControls.size()> entries_;
};

} // namespace ctl
