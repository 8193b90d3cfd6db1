// What the stack makes of the device under test, and its reports in words.
#pragma once

#include "hid/model/LedReports.h"
#include "report/meaning.h"
#include "tools/ctl/check/test_result.h"
#include "tools/ctl/explain/control_map.h"

#include <array>
#include <string>
#include <vector>

namespace ctl {

using Reports = std::vector<report::Bytes>;

inline constexpr std::array kInputControls{
    ControlId::kHookSwitch, ControlId::kPhoneMute, ControlId::kLineBusy, ControlId::kFlash};

class DeviceFacts {
public:
    // Takes any descriptor.
    explicit DeviceFacts(const report::Bytes& descriptor);
    DeviceFacts(const DeviceFacts&) = delete;
    DeviceFacts& operator=(const DeviceFacts&) = delete;

    [[nodiscard]] const ControlMap& map() const { return map_; }
    [[nodiscard]] const KX::TelephonyControls& controls() const { return map_.stackControls(); }
    [[nodiscard]] const KX::LedReports& leds() const { return leds_; }
    [[nodiscard]] const report::Layout& layout() const { return layout_; }

    [[nodiscard]] bool has(ControlId control) const { return map_[control].report.has_value(); }

    // Whether the bit of one of the four input controls is in the report, which may have any
    // length.
    [[nodiscard]] bool isOn(ControlId control, const report::Bytes& report) const;

    // Whether the report, which may have any length, has the id of the control's report. So has
    // every report of a device without report ids.
    [[nodiscard]] bool mayHold(ControlId control, const report::Bytes& report) const;
    // The same for any of the four.
    [[nodiscard]] bool mayHoldControls(const report::Bytes& report) const;

    // "03 08 00 (Ring on)"
    [[nodiscard]] std::string input(const report::Bytes& report) const;
    [[nodiscard]] std::string output(const report::Bytes& report) const;

    // A skip that names the control and says why the stack lacks it.
    [[nodiscard]] Outcome lacks(ControlId control) const;

private:
    const report::Layout layout_;
    const report::UsageNames names_;
    const ControlMap map_;
    const KX::LedReports leds_;
};

[[nodiscard]] inline const char* nameOf(ControlId control)
{
    return kControls[static_cast<size_t>(control)].name;
}

} // namespace ctl
