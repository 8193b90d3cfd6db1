#include "sim/device/reactions.h"

#include <algorithm>

namespace sim {
namespace {

// An input report with the button that the LED belongs to. Other LEDs belong to no button.
Bytes acknowledgement(const std::string& lamp, const Panel& panel)
{
    if (lamp == "mute")
        if (std::optional<Bytes> report = panel.reportOf("mute"))
            return std::move(*report);
    return panel.stateReport();
}

} // namespace

Panel::InputReports reactionsTo(
    const LampChange& change, const DeviceBehaviour& behaviour, Panel& panel)
{
    Panel::InputReports reports;
    const std::string what = change.lamp + (change.on ? " LED on" : " LED off");
    const auto add = [&](Bytes report, const std::string& cause) {
        reports.push_back({cause, withLengthError(std::move(report), behaviour.lengthError)});
    };
    if (std::ranges::find(behaviour.acknowledges, change.lamp) != behaviour.acknowledges.end())
        add(acknowledgement(change.lamp, panel), "acknowledges " + what);
    if (behaviour.togglesMute && change.lamp == "mute")
        for (auto& input : panel.push("mute").value_or(Panel::InputReports{}))
            add(std::move(input.report), input.cause + " by itself");
    for (const Reaction& reaction : behaviour.reactions) {
        if (reaction.lamp != change.lamp || reaction.on != change.on)
            continue;
        for (const Bytes& report : reaction.reports)
            reports.push_back({"reaction to " + what, report});
    }
    return reports;
}

Panel::InputReports startUpReports(const DeviceBehaviour& behaviour)
{
    Panel::InputReports reports;
    for (const Bytes& report : behaviour.onOpen)
        reports.push_back({"start-up", report});
    return reports;
}

Bytes withLengthError(Bytes report, int lengthError)
{
    const auto size = static_cast<std::ptrdiff_t>(report.size()) + lengthError;
    report.resize(static_cast<size_t>(std::max<std::ptrdiff_t>(size, 0)));
    return report;
}

} // namespace sim
