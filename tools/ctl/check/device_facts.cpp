#include "tools/ctl/check/device_facts.h"

#include <algorithm>

namespace ctl {

DeviceFacts::DeviceFacts(const report::Bytes& descriptor)
    : layout_(report::readLayout(descriptor))
    , names_(report::UsageNames::load())
    , map_(descriptor, layout_, names_)
    , leds_(KX::LedReports::FromControls(map_.stackControls()))
{
}

bool DeviceFacts::isOn(ControlId control, const report::Bytes& report) const
{
    if (!mayHold(control, report))
        return false;
    const auto& mask = map_[control].report;
    for (size_t i = layout_.usesReportIds ? 1 : 0; i < mask->size(); ++i) {
        const uint8_t wanted = (*mask)[i];
        if (wanted != 0 && (i >= report.size() || (report[i] & wanted) != wanted))
            return false;
    }
    return true;
}

bool DeviceFacts::mayHold(ControlId control, const report::Bytes& report) const
{
    const auto& mask = map_[control].report;
    return mask && (!layout_.usesReportIds || (!report.empty() && report.front() == mask->front()));
}

bool DeviceFacts::mayHoldControls(const report::Bytes& report) const
{
    return std::any_of(kInputControls.begin(), kInputControls.end(),
        [&](ControlId control) { return mayHold(control, report); });
}

std::string DeviceFacts::input(const report::Bytes& report) const
{
    report::ReportWords words(layout_, names_);
    return report::toHex(report) + " ("
        + words.line(report::wireReport(layout_, report::ReportKind::kInput, report)) + ')';
}

std::string DeviceFacts::output(const report::Bytes& report) const
{
    report::ReportWords words(layout_, names_);
    return report::toHex(report) + " ("
        + words.line(report::sentReport(report::ReportKind::kOutput, report)) + ')';
}

Outcome DeviceFacts::lacks(ControlId control) const
{
    const auto& reason = map_[control].reason;
    return skipped("Kelprobe finds no " + std::string(nameOf(control)) + ". "
        + (reason ? reason->text : std::string()));
}

} // namespace ctl
