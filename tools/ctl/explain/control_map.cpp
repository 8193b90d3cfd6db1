#include "tools/ctl/explain/control_map.h"

#include "hid/model/Root.h"
#include "tools/ctl/explain/absence.h"
#include "tools/ctl/explain/difference.h"

namespace ctl {
namespace {

using Stack = KX::TelephonyControls;

constexpr const char* kNoOffHook = "no-off-hook-led";

// What the stack uses of a control, in the order of ControlId.
constexpr std::array<std::pair<bool Stack::*, KX::Bytes Stack::*>, kControls.size()> kMembers{{
    {&Stack::hasHookSwitch, &Stack::hookSwitchMask},
    {&Stack::hasPhoneMute, &Stack::phoneMuteMask},
    {&Stack::hasLineBusy, &Stack::lineBusyMask},
    {&Stack::hasFlash, &Stack::flashMask},
    {&Stack::hasOffHookLed, &Stack::offHookLedReport},
    {&Stack::hasMuteLed, &Stack::muteLedReport},
    {&Stack::hasRingLed, &Stack::ringLedReport},
    {&Stack::hasHoldLed, &Stack::holdLedReport},
}};

// The template that the stack's tree has for the control, report id first. Empty if it has none.
KX::Bytes findTemplate(const KX::Root& root, const Control& control)
{
    KX::Bytes found;
    const bool isInput = control.kind == report::ReportKind::kInput;
    const bool exists = isInput
        ? root.FindInput(kTelephonyPage, kHeadset, control.usage.id, found)
        : root.FindOutput(kTelephonyPage, kHeadset, control.usage.id, found);
    return exists ? found : KX::Bytes();
}

Remark muteWithoutOffHook()
{
    return {kNoOffHook,
        "Kelprobe uses a Mute LED only together with an Off-Hook LED, because both are lit in a "
        "call. It has none for this device."};
}

Remark descriptorTooLong(size_t size)
{
    return {"descriptor-too-long",
        "The descriptor has " + std::to_string(size) + " bytes. Kelprobe cannot read more than "
            + std::to_string(kMaxReadableSize)
            + " from a device, and then opens it without controls."};
}

// A Mute LED that becomes visible to the stack is still of no use without an Off-Hook LED.
void addFurtherReason(const Stack& stack, ControlEntry& mute)
{
    const std::string_view word = mute.reason ? mute.reason->word : "";
    if (!stack.hasOffHookLed && !word.empty() && word != "absent" && word != kNoOffHook)
        mute.furtherReasons.push_back(muteWithoutOffHook());
}

} // namespace

ControlMap::ControlMap(std::span<const uint8_t> descriptor, const report::Layout& layout,
    const report::UsageNames& names)
{
    if (descriptor.size() > kMaxReadableSize) {
        for (ControlEntry& entry : entries_)
            entry.reason = descriptorTooLong(descriptor.size());
        return;
    }
    KX::Root root;
    root.Parse(descriptor);
    controls_ = Stack::FromDescriptor(root);
    const AbsenceFinder absence(descriptor, layout, names);
    const DifferenceFinder differences(layout, names);
    for (size_t i = 0; i < kControls.size(); ++i) {
        const Control& control = kControls[i];
        const auto& [has, bytes] = kMembers[i];
        ControlEntry& entry = entries_[i];
        const KX::Bytes found = findTemplate(root, control);
        if (controls_.*has)
            entry.report = controls_.*bytes;
        else if (!found.empty())
            entry.reason = muteWithoutOffHook();
        else
            absence.explain(control, entry);
        if (!found.empty()) {
            entry.reportId = found.front();
            entry.notes = differences.between(control, found);
        }
    }
    addFurtherReason(controls_, entries_[static_cast<size_t>(ControlId::kMute)]);
}

} // namespace ctl
