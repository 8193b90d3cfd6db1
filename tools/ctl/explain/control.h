// The eight controls that Kelprobe uses.
#pragma once

#include "report/layout.h"

#include <array>

namespace ctl {

using report::kLedPage;
using report::kTelephonyPage;
inline constexpr uint16_t kHeadset = 0x05; // on the Telephony page
inline constexpr report::Usage kHeadsetUsage{kTelephonyPage, kHeadset};

enum class ControlId : uint8_t {
    kHookSwitch,
    kPhoneMute,
    kLineBusy,
    kFlash,
    kOffHook,
    kMute,
    kRing,
    kHold,
};

struct Control {
    ControlId id;
    const char* key;  // in JSON
    const char* name; // for people
    report::Usage usage;
    report::ReportKind kind; // of the report that it should be in
};

// In the order of ControlId.
inline constexpr std::array<Control, 8> kControls{{
    {ControlId::kHookSwitch, "hookSwitch", "Hook Switch", {kTelephonyPage, 0x20},
        report::ReportKind::kInput},
    {ControlId::kPhoneMute, "phoneMute", "Phone Mute", {kTelephonyPage, 0x2F},
        report::ReportKind::kInput},
    {ControlId::kLineBusy, "lineBusy", "Line Busy Tone", {kTelephonyPage, 0x97},
        report::ReportKind::kInput},
    {ControlId::kFlash, "flash", "Flash", {kTelephonyPage, 0x21}, report::ReportKind::kInput},
    {ControlId::kOffHook, "offHook", "Off-Hook LED", {kLedPage, 0x17}, report::ReportKind::kOutput},
    {ControlId::kMute, "mute", "Mute LED", {kLedPage, 0x09}, report::ReportKind::kOutput},
    {ControlId::kRing, "ring", "Ring LED", {kLedPage, 0x18}, report::ReportKind::kOutput},
    {ControlId::kHold, "hold", "Hold LED", {kLedPage, 0x20}, report::ReportKind::kOutput},
}};

// Whether the range has the usage.
[[nodiscard]] constexpr bool contains(const report::UsageRange& range, report::Usage usage)
{
    return range.minimum.page == usage.page && range.minimum.id <= usage.id
        && usage.id <= range.maximum;
}

} // namespace ctl
