#include "tools/ctl/explain/consequences.h"

#include "hid/model/ReportTemplate.h"
#include "tools/ctl/explain/mask_match.h"
#include "tools/ctl/explain/phrases.h"
#include "tools/ctl/explain/report_bit.h"

#include <algorithm>
#include <cctype>

namespace ctl {
namespace {

using report::Layout;
using report::ReportKind;

constexpr size_t kMaxListedIds = 8;

// Notes on a control whose mask or report has another bit than the control's.
constexpr std::array<std::string_view, 4> kOtherBitNotes{
    "array-field", "other-bit", "other-report", "other-usage"};

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
        addUnrecognised();
        addFirstCall();
        if (controls_.hasRingLed)
            addSecondCall();
        addCall();
        addMuteLed();
        if (controls_.hasHoldLed)
            add("The Hold LED is never lit, because a meeting of Kelprobe is never on hold.");
        addMistakenReports();
        addOtherLeds();
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

    // Buttons that have a mask.
    void addUnrecognised()
    {
        std::vector<std::string> buttons;
        for (const Control& control : kControls)
            if (isButton(control) && map_[control.id].report && !isRecognised(control.id))
                buttons.emplace_back(control.name);
        if (!buttons.empty())
            add("Kelprobe never recognises " + listed(buttons)
                + ", because no report that the descriptor gives the device can match the mask.");
    }

    void addFirstCall()
    {
        if (!controls_.hasRingLed)
            add("No Ring LED: nothing that the device sends while a call rings answers or rejects "
                "it.");
        else if (!isRecognised(ControlId::kHookSwitch))
            add(noHookSwitch()
                + "nothing on the device answers a call, and every report that it sends while the "
                  "first call rings rejects the call.");
        else
            add("While the first call rings, " + reportsWith({ControlId::kHookSwitch})
                + " answers it." + otherInputs());
    }

    // The beginning of a sentence for a device whose hook switch the stack cannot recognise.
    std::string noHookSwitch() const
    {
        return controls_.hasHookSwitch ? "Kelprobe never recognises Hook Switch: "
                                       : "No Hook Switch: ";
    }

    // " Every other report rejects it, also Input report 1.", if the device has others than those
    // that can match the hook switch.
    std::string otherInputs() const
    {
        const std::vector<uint8_t> answers = matchingIds({ControlId::kHookSwitch});
        std::vector<uint8_t> others;
        for (const auto& [key, bits] : layout_.reportBits)
            if (key.kind == ReportKind::kInput && std::ranges::count(answers, key.id) == 0)
                others.push_back(key.id);
        if (others.empty())
            return hasBit(ControlId::kHookSwitch) ? " Every other report rejects it." : "";
        return " Every other report rejects it, also "
            + (others.size() > kMaxListedIds
                    ? "those of " + std::to_string(others.size()) + " other ids."
                    : inputNames(others) + '.');
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
        if (isRecognised(ControlId::kHookSwitch)) {
            addSecondCallButton("answer", ControlId::kFlash);
            addSecondCallButton("refuse", ControlId::kLineBusy);
        } else {
            add(noHookSwitch() + "nothing on the device answers or refuses a second call.");
        }
        if (isRecognised(ControlId::kPhoneMute))
            add("While a second call rings, Phone Mute has no effect.");
    }

    static std::string outputName(const KX::Bytes& report)
    {
        return reportName({ReportKind::kOutput, report.front()});
    }

    // `verb` is what the button does: "answer"
    void addSecondCallButton(const std::string& verb, ControlId button)
    {
        const std::string name = nameOf(button);
        const std::string nothing = "Nothing on the device " + verb + "s a second call: ";
        const Buttons both{button, ControlId::kHookSwitch};
        if (!map_[button].report)
            add(nothing + "there is no " + name + '.');
        else if (!isRecognised(button))
            add(nothing + "Kelprobe never recognises " + name + '.');
        else if (matchingIds(both).empty())
            add(nothing + name + " and Hook Switch are not in the same report.");
        else if (map_[button].reportId != map_[ControlId::kHookSwitch].reportId)
            add("Only " + inputNames(matchingIds(both)) + " can " + verb + " a second call, with "
                + bitsOf(both) + '.');
        else
            add(capitalised(reportsWith(both)) + ' ' + verb + "s a second call.");
    }

    void addCall()
    {
        if (!isRecognised(ControlId::kPhoneMute)) {
            add("During a call nothing on the device has an effect. It can neither mute nor end "
                "the call.");
            return;
        }
        const bool isReal = isRealBit(ControlId::kPhoneMute);
        add("During a call only " + (isReal ? "Phone Mute" : reportsWith({ControlId::kPhoneMute}))
            + " has an effect. Nothing on the device ends the call.");
        if (isAbsolute(ControlId::kPhoneMute))
            add((isReal ? "Phone Mute" : capitalised(bitsOf({ControlId::kPhoneMute})))
                + " is an absolute value: as long as " + (isReal ? "its bit" : "it")
                + " stays set, every further " + ownReport(ControlId::kPhoneMute)
                + (controls_.hasMuteLed ? " mutes or unmutes again." : " mutes again."));
        if (!controls_.hasMuteLed)
            add(std::string("Kelprobe uses no Mute LED: ")
                + (isReal ? "every press of Phone Mute" : "every such report")
                + " mutes, and none unmutes.");
    }

    // Whether the value that a recognised button's mask compares is absolute.
    bool isAbsolute(ControlId button) const
    {
        const auto bit = comparedBit(layout_, *map_[button].report);
        if (!bit)
            return false;
        const auto value = valueAt(layout_, {{ReportKind::kInput, ownId(button)}, *bit});
        return value && (value->field->flags & report::Field::kRelative) == 0;
    }

    // "Input report 3"; "report" in a device without report ids
    std::string ownReport(ControlId button) const
    {
        return layout_.usesReportIds ? inputNames({ownId(button)}) : "report";
    }

    // That of a recognised button, or else the first one that is taken for it.
    uint8_t ownId(ControlId button) const
    {
        const std::vector<uint8_t> ids = matchingIds({button});
        const uint8_t own = map_[button].reportId;
        return std::ranges::count(ids, own) > 0 ? own : ids.front();
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
        else if (sharesMuteReport(controls_.holdLedReport))
            add("The Mute LED shares a report with the Hold LED: it goes dark when a second call "
                "is answered or refused in the window, although the meeting stays muted.");
        else
            add("The Mute LED has a report of its own: if it is lit when the call ends, it stays "
                "lit.");
    }

    bool sharesMuteReport(const KX::Bytes& report) const
    {
        return KX::ShareReport(controls_.muteLedReport, report);
    }

    // Reports of other ids that match masks. The masks of all buttons but Phone Mute have an effect
    // only while a call rings, and those of Flash and Line Busy Tone only with the hook switch.
    void addMistakenReports()
    {
        for (const auto& [key, bits] : layout_.reportBits) {
            std::vector<std::string> mistakes;
            addMistake(key, ControlId::kPhoneMute, mistakes);
            if (controls_.hasRingLed && matches(key, ControlId::kHookSwitch))
                for (const ControlId button :
                    {ControlId::kHookSwitch, ControlId::kFlash, ControlId::kLineBusy})
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
        const uint8_t id = map_[button].reportId;
        if (id == 0 || id == report.id || !matches(report, button))
            return;
        const std::optional<uint64_t> bit = comparedBit(layout_, *map_[button].report);
        const auto value = bit ? valueAt(layout_, {report, *bit}) : std::nullopt;
        const report::Usage usage = kControls[static_cast<size_t>(button)].usage;
        const bool isButton
            = value && value->field->isVariable() && value->field->usageAt(value->index) == usage;
        if (value && !value->field->isPadding() && !isButton)
            mistakes.push_back(contentText(value, names_) + " is taken for " + nameOf(button));
    }

    // LEDs whose report has another bit than the LED's.
    void addOtherLeds()
    {
        std::vector<std::string> leds;
        for (const Control& control : kControls)
            if (!isButton(control) && map_[control.id].report && hasOtherBit(map_[control.id]))
                leds.emplace_back(control.name);
        if (!leds.empty())
            add("What is said here about the " + listed(leds) + " is about the "
                + (leds.size() == 1 ? "bit that Kelprobe takes for it."
                                    : "bits that Kelprobe takes for them."));
    }

    using Buttons = std::vector<ControlId>;

    static bool isButton(const Control& control) { return control.kind == ReportKind::kInput; }

    static std::string nameOf(ControlId control)
    {
        return kControls[static_cast<size_t>(control)].name;
    }

    static std::string capitalised(std::string text)
    {
        text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
        return text;
    }

    // "Input report 1", "Input reports 1 and 2"; "the Input report" without an id
    static std::string inputNames(const std::vector<uint8_t>& ids)
    {
        if (ids.size() == 1)
            return reportName({ReportKind::kInput, ids.front()});
        std::vector<std::string> words;
        words.reserve(ids.size());
        for (const uint8_t id : ids)
            words.push_back(std::to_string(id));
        return "Input reports " + listed(words);
    }

    bool matches(Layout::ReportKey report, ControlId button) const
    {
        const ControlEntry& entry = map_[button];
        return entry.report && canMatch(layout_, report, *entry.report);
    }

    // The input reports that can match all of the buttons.
    std::vector<uint8_t> matchingIds(const Buttons& buttons) const
    {
        std::vector<uint8_t> ids;
        for (const auto& [key, bits] : layout_.reportBits)
            if (std::ranges::all_of(
                    buttons, [&, report = key](ControlId id) { return matches(report, id); }))
                ids.push_back(key.id);
        return ids;
    }

    bool isRecognised(ControlId button) const { return !matchingIds({button}).empty(); }

    // Of a button that has a mask.
    bool hasBit(ControlId button) const
    {
        return comparedBit(layout_, *map_[button].report).has_value();
    }

    // Whether the bit that a recognised button's mask compares is the button.
    bool isRealBit(ControlId button) const
    {
        const ControlEntry& entry = map_[button];
        return hasBit(button) && ownId(button) == entry.reportId && !hasOtherBit(entry);
    }

    static bool hasOtherBit(const ControlEntry& entry)
    {
        return std::ranges::any_of(entry.notes, [](const Remark& note) {
            return std::ranges::count(kOtherBitNotes, std::string_view(note.word)) > 0;
        });
    }

    // "the bits of both Flash and Hook Switch", "the bit that Kelprobe takes for Hook Switch".
    // Empty if the buttons have no bits.
    std::string bitsOf(Buttons buttons) const
    {
        std::erase_if(buttons, [this](ControlId button) { return !hasBit(button); });
        if (buttons.empty())
            return "";
        std::vector<std::string> words;
        for (const ControlId button : buttons)
            words.push_back(nameOf(button));
        const bool isOne = buttons.size() == 1;
        const uint8_t id = map_[buttons.front()].reportId;
        const bool areReal = std::ranges::all_of(buttons,
            [&](ControlId button) { return isRealBit(button) && map_[button].reportId == id; });
        const std::string names = listed(words);
        if (areReal)
            return (isOne ? "the bit of " : "the bits of both ") + names;
        return (isOne ? "the bit that Kelprobe takes for " : "the bits that Kelprobe takes for ")
            + names;
    }

    // What matches all of the recognised buttons: "a report with the bit of Hook Switch"
    std::string reportsWith(const Buttons& buttons) const
    {
        const std::string bits = bitsOf(buttons);
        if (!bits.empty())
            return "a report with " + bits;
        if (!layout_.usesReportIds)
            return "every report";
        const std::vector<uint8_t> ids = matchingIds(buttons);
        return (ids.size() == 1 ? "every " : "every one of ") + inputNames(ids);
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
