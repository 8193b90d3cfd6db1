#include "sim/device/panel.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace sim {
namespace {

struct Name {
    uint16_t usage;
    std::string_view text;
};

constexpr uint16_t kOffHookLed = 0x17;

constexpr std::array kLedNames = {
    Name{0x09, "mute"},
    Name{kOffHookLed, "off-hook"},
    Name{0x18, "ring"},
    Name{0x1e, "speaker"},
    Name{0x20, "hold"},
    Name{0x21, "microphone"},
    Name{0x2a, "on-line"},
};

constexpr std::array kButtonNames = {
    Name{static_cast<uint16_t>(Button::kHook), "hook switch"},
    Name{static_cast<uint16_t>(Button::kFlash), "flash"},
    Name{static_cast<uint16_t>(Button::kMute), "mute"},
    Name{static_cast<uint16_t>(Button::kBusy), "line busy"},
};

template <size_t N>
std::string nameOf(const std::array<Name, N>& names, uint16_t usage)
{
    const auto found = std::find_if(
        names.begin(), names.end(), [usage](const Name& name) { return name.usage == usage; });
    return found == names.end() ? "other" : std::string(found->text);
}

std::string nameOf(Button button)
{
    return nameOf(kButtonNames, static_cast<uint16_t>(button));
}

} // namespace

Panel::Panel(const Bytes& reportDescriptor)
    : fields_(findReportFields(reportDescriptor))
{
}

std::vector<Panel::InputReport> Panel::press(Button button)
{
    const std::lock_guard lock(mutex_);
    if (button == Button::kHook)
        return moveHook(
            hook_ == HookPosition::kOnHook ? HookPosition::kOffHook : HookPosition::kOnHook);
    const ReportField* const field = find(button);
    if (!field)
        return {};
    const Bytes released = inputReport(field->reportId);
    Bytes pressed = released;
    set(*field, pressed, fields_.hasReportIds);
    return {{nameOf(button) + " pressed", pressed}, {nameOf(button) + " released", released}};
}

std::vector<Panel::InputReport> Panel::setHook(HookPosition position)
{
    const std::lock_guard lock(mutex_);
    return moveHook(position);
}

std::vector<Panel::InputReport> Panel::moveHook(HookPosition position)
{
    const ReportField* const field = find(Button::kHook);
    if (!field)
        return {};
    hook_ = position;
    const char* const name = position == HookPosition::kOffHook ? " off" : " on";
    return {{nameOf(Button::kHook) + name, inputReport(field->reportId)}};
}

Bytes Panel::idleReport() const
{
    const std::lock_guard lock(mutex_);
    if (const ReportField* const hook = find(Button::kHook))
        return inputReport(hook->reportId);
    return fields_.inputBits.empty() ? Bytes{0} : inputReport(fields_.inputBits.begin()->first);
}

std::string Panel::applyOutput(const Bytes& report)
{
    const std::lock_guard lock(mutex_);
    std::string changes;
    for (const ReportField& led : fields_.leds) {
        if (report.empty() || report.front() != led.reportId)
            continue;
        const bool on = isSet(led, report, true);
        if (on == lit_.contains(led.usage))
            continue;
        if (on)
            lit_.insert(led.usage);
        else
            lit_.erase(led.usage);
        if (led.usage == kOffHookLed)
            hook_ = on ? HookPosition::kOffHook : HookPosition::kOnHook;
        changes += (changes.empty() ? "" : ", ") + nameOf(kLedNames, led.usage);
        changes += on ? " LED on" : " LED off";
    }
    return changes.empty() ? "no change" : changes;
}

const ReportField* Panel::find(Button button) const
{
    const auto found = std::find_if(
        fields_.buttons.begin(), fields_.buttons.end(), [button](const ReportField& field) {
            return field.usage == static_cast<uint16_t>(button);
        });
    return found == fields_.buttons.end() ? nullptr : &*found;
}

// Every button released, the hook switch in its position.
Bytes Panel::inputReport(uint8_t reportId) const
{
    Bytes report = emptyReport(reportId, fields_.inputBits, fields_.hasReportIds);
    const ReportField* const hook = find(Button::kHook);
    if (hook && hook->reportId == reportId && hook_ == HookPosition::kOffHook)
        set(*hook, report, fields_.hasReportIds);
    return report;
}

} // namespace sim
