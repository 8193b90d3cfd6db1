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

constexpr std::string_view kShort = "short";
constexpr std::string_view kOpen = "open";

constexpr std::array<FaultSwitches::Switch, 7> kSwitches{{
    {kOpen, "opening is not permitted", false, nullptr},
    {"claim", "claiming the interface is refused", true, &DeviceFaults::refuseClaim},
    {"detach", "detaching the kernel's driver is refused", true, &DeviceFaults::refuseDetach},
    {"stall", "reading the report descriptor fails", true, &DeviceFaults::stallReportDescriptor},
    {kShort, "the report descriptor is cut off", true, &DeviceFaults::shortenReportDescriptor},
    {"strings", "reading names fails", true, &DeviceFaults::stallStrings},
    {"write", "output reports are refused", true, &DeviceFaults::failWrite},
}};

// Null if there is none of that name.
const FaultSwitches::Switch* findSwitch(std::string_view name)
{
    const auto entry = std::ranges::find(kSwitches, name, &FaultSwitches::Switch::name);
    return entry == kSwitches.end() ? nullptr : &*entry;
}

CommandResult unknownFault(std::string_view name)
{
    std::vector<std::string_view> names = {FaultSwitches::kNone, FaultSwitches::kFlood};
    for (const FaultSwitches::Switch& each : kSwitches)
        names.push_back(each.name);
    return {kNotUnderstood, "unknown fault " + std::string(name) + suggestion(name, names)};
}

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

void FaultSwitches::setOpenRefused(bool refused)
{
    openRefused_ = refused;
    device_.setOpenable(!refused);
}

CommandResult FaultSwitches::switchOn(std::string_view name, std::optional<int> number)
{
    const Switch* const entry = findSwitch(name);
    if (!entry)
        return unknownFault(name);
    if (name == kOpen) {
        if (number)
            return {kNotUnderstood, "fault open takes no number"};
        setOpenRefused(true);
    } else if (name == kShort) {
        if (!number)
            return {kNotUnderstood, "fault short takes a length in bytes, or off"};
        device_.faults().shortLength = static_cast<size_t>(*number);
        fault(*entry)->arm();
    } else if (number == 0) {
        return {kNotUnderstood, "fault " + std::string(name) + " takes a number from 1, or off"};
    } else {
        fault(*entry)->arm(number.value_or(Fault::kAlways));
    }
    return {};
}

CommandResult FaultSwitches::switchOff(std::string_view name)
{
    const Switch* const entry = findSwitch(name);
    if (!entry)
        return unknownFault(name);
    if (Fault* const found = fault(*entry))
        found->arm(0);
    else
        setOpenRefused(false);
    return {};
}

void FaultSwitches::switchAllOff()
{
    device_.faults().clear();
    setOpenRefused(false);
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
