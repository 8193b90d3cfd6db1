#include "tools/ctl/check/tests/press_findings.h"

#include <algorithm>

namespace ctl {
namespace {

std::string controlText(PressCase press)
{
    return std::string(nameOf(press.press).control);
}

std::vector<std::string> inputsInWords(const DeviceFacts& device, const Reports& reports)
{
    std::vector<std::string> words;
    for (const auto& report : reports)
        words.push_back(device.input(report));
    return words;
}

bool anyIsOn(const DeviceFacts& device, ControlId control, const Reports& reports)
{
    return std::any_of(reports.begin(), reports.end(),
        [&](const auto& report) { return device.isOn(control, report); });
}

// The following functions return what is wrong in one respect; empty if nothing is.

std::string onlyOtherReports(const DeviceFacts& device, PressCase press, const Reports& received)
{
    const bool hasReport = std::any_of(received.begin(), received.end(),
        [&](const auto& report) { return device.mayHoldControls(report); });
    if (hasReport)
        return {};
    return "The device sent only reports without a control of a call when the " + controlText(press)
        + " was pressed. Send " + device.input(neededReport(device, press)) + '.';
}

std::string wrongLength(const DeviceFacts& device, PressCase press, const Reports& received)
{
    const report::Bytes needed = neededReport(device, press);
    const bool usesIds = device.layout().usesReportIds;
    const auto isWrong = [&](const report::Bytes& report) {
        const bool sameId = !usesIds || (!report.empty() && report.front() == needed.front());
        return sameId && report.size() != needed.size();
    };
    const auto wrong = std::find_if(received.begin(), received.end(), isWrong);
    if (wrong == received.end())
        return {};
    return "The device sent a report of " + std::to_string(wrong->size()) + " bytes when the "
        + controlText(press) + " was pressed; Kelprobe expects " + std::to_string(needed.size())
        + " bytes" + (usesIds ? ", report id included," : "")
        + " and takes no other length. Send the whole report.";
}

// The controls other than that of the press that are on in one of the reports, in words. During a
// call the hook switch is on because of its position.
std::string othersIn(const DeviceFacts& device, PressCase press, const Reports& reports)
{
    std::string names;
    for (const ControlId control : kInputControls) {
        const bool isPosition = control == ControlId::kHookSwitch && isOffHook(press.before);
        if (control != controlOf(press.press) && !isPosition && anyIsOn(device, control, reports))
            names += (names.empty() ? "" : ", ") + std::string(nameOf(control));
    }
    return names;
}

std::string wrongBit(const DeviceFacts& device, PressCase press, const Reports& received)
{
    const ControlId wanted = controlOf(press.press);
    if (anyIsOn(device, wanted, received))
        return {};
    const std::string name = nameOf(wanted);
    const std::string others = othersIn(device, press, received);
    if (others.empty())
        return "The device sent a report when the " + controlText(press)
            + " was pressed, but the bit of the usage " + name + " is not set in it. Set that bit.";
    return "The " + controlText(press) + " was pressed, but the report has " + others
        + " on and not " + name + ". Set the bit of " + name + " for this button.";
}

std::string wrongHookSwitch(const DeviceFacts& device, PressCase press, const Reports& received)
{
    const ControlId wanted = controlOf(press.press);
    const auto hasBoth = [&](const auto& report) {
        return device.isOn(wanted, report) && device.isOn(ControlId::kHookSwitch, report);
    };
    const bool both = std::any_of(received.begin(), received.end(), hasBoth);
    if (press.before == CallState::kWaiting && !both)
        return std::string(nameOf(wanted))
            + " came without Hook Switch. While a second call rings during a call, send both bits "
              "in one report.";
    if (press.before != CallState::kRinging || wanted == ControlId::kHookSwitch || !both)
        return {};
    const auto staysOn = [&](const auto& report) {
        return !device.isOn(wanted, report) && device.isOn(ControlId::kHookSwitch, report);
    };
    if (std::any_of(received.begin(), received.end(), staysOn))
        return "Hook Switch stayed on after the Off-Hook LED was switched off, which answers a "
               "ringing call. Let it follow the LED.";
    return "The report of the " + controlText(press)
        + " has Hook Switch on as well, which answers a ringing call. Leave that bit off.";
}

std::string anotherReportBefore(const DeviceFacts& device, PressCase press, const Reports& received)
{
    if (device.isOn(controlOf(press.press), received.front()))
        return {};
    return "Before the report of the " + controlText(press)
        + " the device sent another, and Kelprobe acted on that one. Send only the report of the "
          "press.";
}

std::string tooManyControls(const DeviceFacts& device, PressCase press, const Reports& received)
{
    const std::string others = otherControls(device, press, received);
    if (others.empty())
        return {};
    return "The report of the " + controlText(press) + " also has " + others
        + " on. Set only the bit of " + nameOf(controlOf(press.press)) + " for this button.";
}

std::string reasonOf(const DeviceFacts& device, PressCase press, const Reports& received)
{
    if (received.empty())
        return "The device sent no report when the " + controlText(press) + " was pressed. Send "
            + device.input(neededReport(device, press)) + '.';
    for (const auto find : {onlyOtherReports, wrongLength, wrongBit, wrongHookSwitch,
             anotherReportBefore, tooManyControls})
        if (std::string reason = find(device, press, received); !reason.empty())
            return reason;
    return "The report of the press is right, but it did not have its effect.";
}

} // namespace

report::Bytes neededReport(const DeviceFacts& device, PressCase press)
{
    report::Bytes needed = device.map()[controlOf(press.press)].report.value_or(report::Bytes{});
    const auto& hook = device.map()[ControlId::kHookSwitch].report;
    if (press.before == CallState::kWaiting && hook && hook->size() == needed.size())
        for (size_t i = 0; i < needed.size(); ++i)
            needed[i] |= (*hook)[i];
    return needed;
}

std::string otherControls(const DeviceFacts& device, PressCase press, const Reports& received)
{
    Reports pressed = received;
    std::erase_if(
        pressed, [&](const auto& report) { return !device.isOn(controlOf(press.press), report); });
    return othersIn(device, press, pressed);
}

Outcome explainPress(const DeviceFacts& device, PressCase press, const Reports& received)
{
    return failed(reasonOf(device, press, received),
        {{"expected", {device.input(neededReport(device, press))}},
            {"got", inputsInWords(device, received)}});
}

bool isRepeated(const DeviceFacts& device, ControlId control, const Reports& received)
{
    bool pressed = false;
    for (const auto& report : received) {
        if (!device.mayHold(control, report))
            continue;
        const bool isOn = device.isOn(control, report);
        if (pressed && isOn)
            return true;
        pressed = isOn;
    }
    return false;
}

std::string repetition(const DeviceFacts& device, Action press, const Reports& received)
{
    const std::string name(nameOf(press).control);
    const ControlId control = controlOf(press);
    if (isRepeated(device, control, received))
        return "The device repeated the report of the " + name
            + " without a release between, which counts as another press. Send it once a press.";
    const auto presses = std::count_if(received.begin(), received.end(),
        [&](const auto& report) { return device.isOn(control, report); });
    if (presses <= 1)
        return {};
    return "The device reported " + std::to_string(presses) + " presses of the " + name
        + " for one. Report a press once, also if the contact bounces.";
}

} // namespace ctl
