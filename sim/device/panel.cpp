#include "sim/device/panel.h"

#include "sim/device/button_report.h"

#include <algorithm>
#include <set>

namespace sim {
namespace {

using report::ReportKind;

// A value of a variable field, or a usage of an array: what a Control has.
using Place = std::pair<const report::Field*, uint64_t>;

// The LEDs that an output report switches on. An array contains only those that are on.
std::set<Place> switchedOn(const report::DecodedReport& decoded)
{
    std::set<Place> on;
    for (const report::Value& value : decoded.values) {
        if (!value.field->isVariable() && value.inRange)
            on.emplace(
                value.field, static_cast<uint64_t>(value.value - value.field->logicalMinimum));
        else if (value.field->isVariable() && value.value != 0)
            on.emplace(value.field, value.index);
    }
    return on;
}

} // namespace

const report::UsageNames& systemUsageNames()
{
    static const report::UsageNames names = report::UsageNames::load();
    return names;
}

Panel::Panel(const Bytes& reportDescriptor, HookSwitch hookSwitch, const report::UsageNames& names)
    : layout_(report::readLayout(reportDescriptor))
    , hookSwitch_(hookSwitch)
    , names_(names)
    , buttons_(findButtons(layout_, names))
    , lampControls_(findLamps(layout_, names))
    , words_(std::in_place, layout_, names)
    , lamps_(lampControls_.size())
{
}

std::vector<Panel::ButtonState> Panel::buttons() const
{
    const std::lock_guard lock(mutex_);
    std::vector<ButtonState> states;
    for (const Control& button : buttons_)
        states.push_back(
            {button.name, button.label, button.usage, isSwitch(button), isPressed(button)});
    return states;
}

std::vector<Panel::LampInfo> Panel::lamps() const
{
    const std::lock_guard lock(mutex_);
    std::vector<LampInfo> infos;
    for (size_t i = 0; i < lamps_.size(); ++i) {
        const Control& control = lampControls_[i];
        infos.push_back({control.name, control.label, control.usage, lamps_[i]});
    }
    return infos;
}

bool Panel::hasButton(std::string_view name) const
{
    const std::lock_guard lock(mutex_);
    return find(name) != nullptr;
}

std::optional<HookPosition> Panel::hook() const
{
    const std::lock_guard lock(mutex_);
    const Control* const hook = find("hook");
    if (!hook || !isSwitch(*hook))
        return std::nullopt;
    return isPressed(*hook) ? HookPosition::kOffHook : HookPosition::kOnHook;
}

std::optional<Panel::InputReports> Panel::press(std::string_view button)
{
    const std::lock_guard lock(mutex_);
    const Control* const control = find(button);
    return control ? std::optional<InputReports>{{set(*control, true)}} : std::nullopt;
}

std::optional<Panel::InputReports> Panel::release(std::string_view button)
{
    const std::lock_guard lock(mutex_);
    const Control* const control = find(button);
    return control ? std::optional<InputReports>{{set(*control, false)}} : std::nullopt;
}

std::optional<Panel::InputReports> Panel::push(std::string_view button)
{
    const std::lock_guard lock(mutex_);
    const Control* const control = find(button);
    if (!control)
        return std::nullopt;
    if (isSwitch(*control))
        return {{set(*control, !isPressed(*control))}};
    InputReport pressed = set(*control, true);
    return {{std::move(pressed), set(*control, false)}};
}

std::optional<Panel::InputReports> Panel::setHook(HookPosition position)
{
    if (hookSwitch_ == HookSwitch::kMomentary)
        return push("hook");
    return position == HookPosition::kOffHook ? press("hook") : release("hook");
}

std::optional<Bytes> Panel::reportOf(std::string_view button) const
{
    const std::lock_guard lock(mutex_);
    const Control* const control = find(button);
    return control ? std::optional(reportWithId(control->field->reportId)) : std::nullopt;
}

Bytes Panel::inputReport(uint8_t id) const
{
    const std::lock_guard lock(mutex_);
    return reportWithId(id);
}

Bytes Panel::stateReport() const
{
    const std::lock_guard lock(mutex_);
    if (const Control* const hook = find("hook"))
        return reportWithId(hook->field->reportId);
    const auto first = layout_.reportBits.lower_bound({ReportKind::kInput, 0});
    const bool hasInput
        = first != layout_.reportBits.end() && first->first.kind == ReportKind::kInput;
    return hasInput ? reportWithId(first->first.id) : Bytes{0};
}

std::vector<LampChange> Panel::applyOutput(const Bytes& report)
{
    const std::lock_guard lock(mutex_);
    report::ReportView view = report::sentReport(ReportKind::kOutput, report);
    Bytes payload(view.payload.begin(), view.payload.end());
    const auto bits = layout_.reportBits.find(view.key);
    if (bits == layout_.reportBits.end())
        return {};
    payload.resize(std::max<size_t>(payload.size(), (bits->second + 7) / 8));
    view.payload = payload;
    const std::set<Place> switchedOn = sim::switchedOn(report::decode(layout_, view));

    std::vector<LampChange> changes;
    for (size_t i = 0; i < lamps_.size(); ++i) {
        const Control& control = lampControls_[i];
        const bool on = switchedOn.contains({control.field, control.index});
        if (control.field->reportId != view.key.id || lamps_[i] == on)
            continue;
        switchLamp(i, on);
        changes.push_back({control.name, on});
    }
    return changes;
}

void Panel::switchLamp(size_t index, bool on)
{
    lamps_[index] = on;
    const Control* const hook = find("hook");
    const bool moves = hook && hookSwitch_ == HookSwitch::kFollowsLamp;
    if (moves && lampControls_[index].name == "off-hook")
        set(*hook, on);
}

void Panel::losePower()
{
    const std::lock_guard lock(mutex_);
    for (size_t i = 0; i < lamps_.size(); ++i)
        if (lamps_[i])
            switchLamp(i, false);
    std::erase_if(pressed_, [this](const Control* button) { return !isSwitch(*button); });
}

void Panel::forgetReports()
{
    const std::lock_guard lock(mutex_);
    words_.emplace(layout_, names_);
}

std::vector<std::string> Panel::meaning(ReportKind kind, const Bytes& report)
{
    const std::lock_guard lock(mutex_);
    const report::ReportView view = kind == ReportKind::kInput
        ? report::wireReport(layout_, kind, report)
        : report::sentReport(kind, report);
    std::vector<std::string> changed;
    for (report::ReportWords::Word& word : words_->describe(view)) {
        if (word.changed)
            changed.push_back(std::move(word.text));
    }
    return changed;
}

const Control* Panel::find(std::string_view button) const
{
    const auto found = std::ranges::find(buttons_, button, &Control::name);
    return found == buttons_.end() ? nullptr : &*found;
}

bool Panel::isSwitch(const Control& button) const
{
    return button.usage == kHookUsage && hookSwitch_ != HookSwitch::kMomentary;
}

bool Panel::isPressed(const Control& button) const
{
    return std::ranges::find(pressed_, &button) != pressed_.end();
}

Panel::InputReport Panel::set(const Control& button, bool pressed)
{
    if (!pressed)
        std::erase(pressed_, &button);
    else if (!isPressed(button))
        pressed_.push_back(&button);
    const char* const on = isSwitch(button) ? " off" : " pressed"; // a hook switch is off-hook
    const char* const off = isSwitch(button) ? " on" : " released";
    return {button.name + (pressed ? on : off), reportWithId(button.field->reportId)};
}

Bytes Panel::reportWithId(uint8_t reportId) const
{
    ButtonReport report(layout_, reportId);
    for (const Control* const button : pressed_) {
        if (button->field->reportId == reportId)
            report.switchOn(*button);
    }
    return report.bytes();
}

} // namespace sim
