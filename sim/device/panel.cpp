#include "sim/device/panel.h"

#include "report/decoder.h"
#include "sim/device/button_report.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace sim {
namespace {

struct Name {
    uint16_t usage;
    std::string_view text;
};

constexpr uint16_t kLedPage = 0x08;
constexpr uint16_t kTelephonyPage = 0x0b;
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

report::Usage usageOf(Button button)
{
    return {kTelephonyPage, static_cast<uint16_t>(button)};
}

} // namespace

Panel::Panel(const Bytes& reportDescriptor)
    : layout_(report::readLayout(reportDescriptor))
{
}

std::vector<Panel::InputReport> Panel::press(Button button)
{
    const std::lock_guard lock(mutex_);
    if (button == Button::kHook)
        return moveHook(
            hook_ == HookPosition::kOnHook ? HookPosition::kOffHook : HookPosition::kOnHook);
    const report::Field* const field = find(button);
    if (!field)
        return {};
    return {{nameOf(button) + " pressed", inputReport(field->reportId, button)},
        {nameOf(button) + " released", inputReport(field->reportId)}};
}

std::vector<Panel::InputReport> Panel::setHook(HookPosition position)
{
    const std::lock_guard lock(mutex_);
    return moveHook(position);
}

std::vector<Panel::InputReport> Panel::moveHook(HookPosition position)
{
    const report::Field* const field = find(Button::kHook);
    if (!field)
        return {};
    hook_ = position;
    const char* const name = position == HookPosition::kOffHook ? " off" : " on";
    return {{nameOf(Button::kHook) + name, inputReport(field->reportId)}};
}

Bytes Panel::idleReport() const
{
    const std::lock_guard lock(mutex_);
    if (const report::Field* const hook = find(Button::kHook))
        return inputReport(hook->reportId);
    const auto first = layout_.reportBits.lower_bound({report::ReportKind::kInput, 0});
    const bool hasInput
        = first != layout_.reportBits.end() && first->first.kind == report::ReportKind::kInput;
    return hasInput ? inputReport(first->first.id) : Bytes{0};
}

std::string Panel::applyOutput(const Bytes& report)
{
    const std::lock_guard lock(mutex_);
    std::string changes;
    for (const auto& [usage, on] : ledsIn(report)) {
        if (on == lit_.contains(usage))
            continue;
        if (on)
            lit_.insert(usage);
        else
            lit_.erase(usage);
        if (usage == kOffHookLed)
            hook_ = on ? HookPosition::kOffHook : HookPosition::kOnHook;
        changes += (changes.empty() ? "" : ", ") + nameOf(kLedNames, usage);
        changes += on ? " LED on" : " LED off";
    }
    return changes.empty() ? "no change" : changes;
}

// The LEDs that an output report switches, in descriptor order. Those beyond its end are off.
std::vector<Panel::LedState> Panel::ledsIn(const Bytes& output) const
{
    report::ReportView view = report::sentReport(report::ReportKind::kOutput, output);
    Bytes payload(view.payload.begin(), view.payload.end());
    payload.resize(std::max(payload.size(), report::decode(layout_, view).expectedSize));
    view.payload = payload;
    const report::DecodedReport decoded = report::decode(layout_, view);

    std::vector<LedState> leds;
    std::set<uint16_t> inArrays;
    for (const report::Value& value : decoded.values) {
        const bool inArray = !value.field->isVariable();
        // Of values that share a usage, only the first one is the LED.
        const bool repeatsUsage = !inArray && value.index >= value.field->usageCount();
        if (value.usage.page != kLedPage || repeatsUsage)
            continue;
        leds.push_back({value.usage.id, inArray || value.value != 0});
        if (inArray)
            inArrays.insert(value.usage.id);
    }
    // An array contains only those that are on.
    for (const uint16_t usage : lit_) {
        const auto canHave = [usage](const report::Value& value) {
            return !value.field->isVariable() && value.index == 0
                && value.field->indexOf({kLedPage, usage});
        };
        if (!inArrays.contains(usage) && std::ranges::any_of(decoded.values, canHave))
            leds.push_back({usage, false});
    }
    return leds;
}

const report::Field* Panel::find(Button button) const
{
    const auto found = std::ranges::find_if(layout_.fields, [button](const report::Field& field) {
        return field.kind == report::ReportKind::kInput && hasControl(field, usageOf(button));
    });
    return found == layout_.fields.end() ? nullptr : &*found;
}

// Every button released but one, the hook switch in its position.
Bytes Panel::inputReport(uint8_t reportId, std::optional<Button> pressed) const
{
    ButtonReport report(layout_, reportId);
    const report::Field* const hook = find(Button::kHook);
    if (hook && hook->reportId == reportId && hook_ == HookPosition::kOffHook)
        report.switchOn(*hook, usageOf(Button::kHook));
    if (pressed)
        report.switchOn(*find(*pressed), usageOf(*pressed));
    return report.bytes();
}

} // namespace sim
