#include "tools/ctl/explain/consequences.h"

#include "hid/model/ReportTemplate.h"
#include "tools/ctl/explain/phrases.h"
#include "tools/ctl/explain/report_bit.h"

namespace ctl {
namespace {

using report::Layout;
using report::ReportKind;

constexpr size_t kMaxListedIds = 8;

// The rules are those of hid/model/TelephonyStateMachine and hid/model/LedReports.
class Consequences {
public:
    Consequences(const ControlMap& map, const Layout& layout, const report::UsageNames& names)
        : map_(map)
        , controls_(map.stackControls())
        , layout_(layout)
        , names_(names)
    {
    }

    std::vector<std::string> take()
    {
        if (!hasControls()) {
            add("Kelprobe opens the device, but sends it nothing and ignores its reports.");
            return std::move(sentences_);
        }
        addLeds();
        addFirstCall();
        if (controls_.hasRingLed)
            addSecondCall();
        addCall();
        addMuteLed();
        if (controls_.hasHoldLed)
            add("The Hold LED is never lit, because a meeting of Kelprobe is never on hold.");
        addMistakenReports();
        return std::move(sentences_);
    }

private:
    void add(std::string sentence) { sentences_.push_back(std::move(sentence)); }

    bool hasControls() const
    {
        return hasLeds() || controls_.hasHookSwitch || controls_.hasPhoneMute
            || controls_.hasLineBusy || controls_.hasFlash;
    }

    // A Mute LED is used only together with an Off-Hook LED.
    bool hasLeds() const
    {
        return controls_.hasOffHookLed || controls_.hasRingLed || controls_.hasHoldLed;
    }

    void addLeds()
    {
        if (!hasLeds())
            add("Kelprobe sends the device no reports, because it uses none of its LEDs.");
        else if (!controls_.hasOffHookLed)
            add("No Off-Hook LED: no report shows the device that a call is active.");
    }

    void addFirstCall()
    {
        if (!controls_.hasRingLed)
            add("No Ring LED: nothing that the device sends while a call rings answers or rejects "
                "it.");
        else if (!controls_.hasHookSwitch)
            add("No Hook Switch: nothing on the device answers a call, and every report that it "
                "sends while the first call rings rejects the call.");
        else
            add("While the first call rings, a report with the bit of Hook Switch answers it. "
                "Every other report rejects it"
                + otherInputs() + '.');
    }

    // ", also those of Input report 1", if the device has others than that of the hook switch.
    std::string otherInputs() const
    {
        std::vector<std::string> others;
        for (const auto& [key, bits] : layout_.reportBits)
            if (key.kind == ReportKind::kInput && key.id != map_[ControlId::kHookSwitch].reportId)
                others.push_back(std::to_string(key.id));
        if (others.empty())
            return "";
        if (others.size() > kMaxListedIds)
            return ", also those of " + std::to_string(others.size()) + " other ids";
        return std::string(", also Input report") + (others.size() > 1 ? "s " : " ")
            + listed(others);
    }

    // A device with a Ring LED.
    void addSecondCall()
    {
        if (!controls_.hasOffHookLed)
            add("No Off-Hook LED: while a second call rings no report is sent, so the Ring LED "
                "stays dark.");
        else if (!KX::ShareReport(controls_.ringLedReport, controls_.offHookLedReport))
            add("The Ring LED is in " + outputName(controls_.ringLedReport)
                + ", the Off-Hook LED in " + outputName(controls_.offHookLedReport)
                + ": while a second call rings only the ring report is sent.");
        if (controls_.hasHookSwitch) {
            addSecondCallButton("answers", ControlId::kFlash);
            addSecondCallButton("refuses", ControlId::kLineBusy);
        } else {
            add("No Hook Switch: nothing on the device answers or refuses a second call.");
        }
        if (controls_.hasPhoneMute)
            add("While a second call rings, Phone Mute has no effect.");
    }

    static std::string outputName(const KX::Bytes& report)
    {
        return reportName({ReportKind::kOutput, report.front()});
    }

    void addSecondCallButton(const std::string& verb, ControlId button)
    {
        const std::string name = nameOf(button);
        const std::string nothing = "Nothing on the device " + verb + " a second call: ";
        if (!map_[button].report)
            add(nothing + "there is no " + name + '.');
        else if (!canMatchWithHookSwitch(map_[button]))
            add(nothing + name + " and Hook Switch are not in the same report.");
        else
            add("A report with the bits of both " + name + " and Hook Switch " + verb
                + " a second call.");
    }

    static std::string nameOf(ControlId control)
    {
        return kControls[static_cast<size_t>(control)].name;
    }

    // Whether one of the device's reports can match two masks.
    bool canMatchWithHookSwitch(const ControlEntry& button) const
    {
        const ControlEntry& hook = map_[ControlId::kHookSwitch];
        if (hook.report->size() != button.report->size())
            return false;
        const unsigned id = hook.reportId | button.reportId;
        for (const auto& [key, bits] : layout_.reportBits)
            if (key.kind == ReportKind::kInput && (key.id & id) == id
                && layout_.wireSize(key) == button.report->size())
                return true;
        return false;
    }

    void addCall()
    {
        if (!controls_.hasPhoneMute)
            add("During a call nothing on the device has an effect. It can neither mute nor end "
                "the call.");
        else
            add("During a call only Phone Mute has an effect. Nothing on the device ends the "
                "call.");
        if (isAbsolute(map_[ControlId::kPhoneMute]))
            add("Phone Mute is an absolute value: as long as its bit stays set, every further "
                "report mutes or unmutes again.");
        if (controls_.hasPhoneMute && !controls_.hasMuteLed)
            add("Kelprobe uses no Mute LED: every press of Phone Mute mutes, and none unmutes.");
    }

    bool isAbsolute(const ControlEntry& button) const
    {
        if (!button.report)
            return false;
        const std::optional<uint64_t> bit = setBit(*button.report, button.reportId == 0 ? 0 : 1);
        const ReportBit place{{ReportKind::kInput, button.reportId}, bit.value_or(0)};
        const std::optional<FieldValue> value = valueAt(layout_, place);
        return value && (value->field->flags & report::Field::kRelative) == 0;
    }

    void addMuteLed()
    {
        if (!controls_.hasMuteLed)
            return;
        const bool withRing = sharesMuteReport(controls_.ringLedReport);
        const bool withOffHook = sharesMuteReport(controls_.offHookLedReport);
        if (withRing)
            add("The Mute LED shares a report with the Ring LED: it goes dark when a second call "
                "rings, although the meeting stays muted.");
        else if (withOffHook)
            add("The Mute LED shares a report with the Off-Hook LED: it goes dark when a second "
                "call is answered or refused, although the meeting stays muted.");
        else if (!sharesMuteReport(controls_.holdLedReport))
            add("The Mute LED has a report of its own: if it is lit when the call ends, it stays "
                "lit.");
    }

    bool sharesMuteReport(const KX::Bytes& report) const
    {
        return KX::ShareReport(controls_.muteLedReport, report);
    }

    // Reports of other ids that match masks. The masks of all buttons but Phone Mute have an effect
    // only while a call rings.
    void addMistakenReports()
    {
        for (const auto& [key, bits] : layout_.reportBits) {
            if (key.kind != ReportKind::kInput)
                continue;
            std::vector<std::string> mistakes;
            addMistake(key, ControlId::kPhoneMute, mistakes);
            for (const ControlId button :
                {ControlId::kHookSwitch, ControlId::kFlash, ControlId::kLineBusy})
                if (controls_.hasRingLed)
                    addMistake(key, button, mistakes);
            if (!mistakes.empty())
                add(listed(mistakes) + ", because " + reportName(key)
                    + " has the length of the button's report, and its id has all bits of that "
                      "report's id.");
        }
    }

    void addMistake(
        Layout::ReportKey report, ControlId button, std::vector<std::string>& mistakes) const
    {
        const ControlEntry& entry = map_[button];
        const unsigned id = entry.reportId;
        const bool matches = entry.report && id != 0 && report.id != id && (report.id & id) == id
            && layout_.wireSize(report) == entry.report->size();
        const std::optional<uint64_t> bit = matches ? setBit(*entry.report, 1) : std::nullopt;
        const auto value = bit ? valueAt(layout_, {report, *bit}) : std::nullopt;
        if (value && !value->field->isPadding())
            mistakes.push_back(contentText(value, names_) + " is taken for " + nameOf(button));
    }

    const ControlMap& map_;
    const KX::TelephonyControls& controls_; // of map_
    const Layout& layout_;
    const report::UsageNames& names_;
    std::vector<std::string> sentences_;
};

} // namespace

std::vector<std::string> meetingConsequences(
    const ControlMap& map, const Layout& layout, const report::UsageNames& names)
{
    return Consequences(map, layout, names).take();
}

} // namespace ctl
