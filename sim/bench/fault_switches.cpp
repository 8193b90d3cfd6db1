#include "sim/bench/fault_switches.h"

#include "sim/bench/command_words.h"

#include <json/value.h>

#include <algorithm>
#include <array>

namespace sim {

struct FaultSwitches::Switch {
    std::string_view name;
    std::string_view label;
    bool counts; // takes a number
    Fault DeviceFaults::*fault;
};

namespace {

constexpr std::string_view kNone = "none";
constexpr std::string_view kShort = "short";
constexpr std::string_view kOpen = "open";

constexpr std::array<FaultSwitches::Switch, 7> kSwitches{{
    {"open", "opening is not permitted", false, nullptr},
    {"claim", "claiming the interface is refused", true, &DeviceFaults::refuseClaim},
    {"detach", "detaching the kernel's driver is refused", true, &DeviceFaults::refuseDetach},
    {"stall", "reading the report descriptor fails", true, &DeviceFaults::stallReportDescriptor},
    {"short", "the report descriptor ends after N bytes", true,
        &DeviceFaults::shortenReportDescriptor},
    {"strings", "reading names fails", true, &DeviceFaults::stallStrings},
    {"write", "output reports are refused", true, &DeviceFaults::failWrite},
}};

} // namespace

FaultSwitches::FaultSwitches(UsbDevice& device)
    : device_(device)
    , armed_(kSwitches.size())
{
}

Fault* FaultSwitches::fault(const Switch& entry) const
{
    return entry.fault ? &(device_.faults().*entry.fault) : nullptr;
}

bool FaultSwitches::isArmed(const Switch& entry) const
{
    const Fault* const found = fault(entry);
    return found ? found->armed() : openRefused_;
}

CommandResult FaultSwitches::set(std::string_view name, int number)
{
    if (name == kNone) {
        device_.faults().clear();
        name = kOpen;
        number = 0;
    }
    const auto entry = std::ranges::find(kSwitches, name, &Switch::name);
    if (entry == kSwitches.end()) {
        std::vector<std::string_view> names = {kNone, kFlood};
        for (const Switch& each : kSwitches)
            names.push_back(each.name);
        return {kNotUnderstood, "unknown fault " + std::string(name) + suggestion(name, names)};
    }
    if (name == kOpen) {
        if (number > 0)
            return {kNotUnderstood, "fault open takes no number"};
        openRefused_ = number != 0;
        device_.setOpenable(!openRefused_);
    } else if (name == kShort) {
        if (number < 0)
            return {kNotUnderstood, "fault short takes a length in bytes, or off"};
        device_.faults().shortLength = static_cast<size_t>(number);
        fault(*entry)->arm(number == 0 ? 0 : Fault::kAlways);
    } else {
        fault(*entry)->arm(number);
    }
    return {};
}

std::vector<FaultSwitches::Change> FaultSwitches::takeChanges()
{
    std::vector<Change> changes;
    for (size_t i = 0; i < kSwitches.size(); ++i) {
        const bool armed = isArmed(kSwitches[i]);
        if (armed != armed_[i])
            changes.push_back({kSwitches[i].name, armed});
        armed_[i] = armed;
    }
    return changes;
}

Json::Value FaultSwitches::json() const
{
    Json::Value list = Json::arrayValue;
    for (const Switch& entry : kSwitches) {
        Json::Value object;
        object["name"] = std::string(entry.name);
        object["label"] = std::string(entry.label);
        object["count"] = entry.counts;
        object["armed"] = isArmed(entry);
        list.append(object);
    }
    return list;
}

} // namespace sim
