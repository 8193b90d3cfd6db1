#include "tools/ctl/check/recorded_operator.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>

namespace ctl {
namespace {

// Buttons first: a report of theirs may also hold the position of the hook switch.
constexpr std::array kInputs{
    ControlId::kPhoneMute, ControlId::kLineBusy, ControlId::kFlash, ControlId::kHookSwitch};

// The control that `report` switches on, compared with the report before of the same id.
std::optional<ControlId> pressedIn(
    const DeviceFacts& facts, const report::Bytes& before, const report::Bytes& report)
{
    for (const ControlId control : kInputs)
        if (facts.isOn(control, report) && !facts.isOn(control, before))
            return control;
    return std::nullopt;
}

} // namespace

RecordedOperator::RecordedOperator(
    RecordedDevice& device, const DeviceFacts& facts, const Reports& inputs)
    : device_(device)
{
    std::map<uint8_t, report::Bytes> last; // by id
    for (const auto& report : inputs) {
        const bool hasId = facts.layout().usesReportIds && !report.empty();
        report::Bytes& before = last[hasId ? report.front() : uint8_t{0}];
        if (const auto control = pressedIn(facts, before, report))
            presses_.push_back(
                {.control = *control, .offHook = facts.isOn(ControlId::kHookSwitch, report)});
        if (!presses_.empty())
            presses_.back().reports.push_back(report);
        before = report;
    }
}

RecordedOperator::RecordedPress* RecordedOperator::find(ControlId control, bool offHook)
{
    RecordedPress* other = nullptr;
    for (RecordedPress& press : presses_) {
        if (press.control != control || press.used)
            continue;
        if (control == ControlId::kHookSwitch || press.offHook == offHook)
            return &press;
        if (!other && !press.offHook)
            other = &press;
    }
    return other;
}

void RecordedOperator::begin(Action action)
{
    RecordedPress* const press = find(controlOf(action), device_.isOffHook());
    if (!press) {
        state_ = State::kDeclined;
        reason_ = "The recording has no further press of the " + std::string(nameOf(action).control)
            + '.';
        return;
    }
    press->used = true;
    for (const auto& report : press->reports)
        device_.receive(report);
    state_ = State::kDone;
}

} // namespace ctl
