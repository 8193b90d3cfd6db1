#include "sim/bench/device_lamps.h"

#include "sim/device/usage_text.h"

#include <json/value.h>

#include <algorithm>

namespace sim {

std::string nameOf(LampState state)
{
    return state == LampState::kBlink ? "blink" : state == LampState::kOn ? "on" : "off";
}

DeviceLamps::DeviceLamps(std::vector<Panel::LampInfo> lamps)
{
    for (Panel::LampInfo& lamp : lamps)
        entries_.push_back({std::move(lamp)});
}

std::vector<DeviceLamps::Change> DeviceLamps::apply(
    const std::vector<LampChange>& changes, Time now)
{
    for (const LampChange& change : changes) {
        const auto entry = std::ranges::find_if(
            entries_, [&](const Entry& each) { return each.info.name == change.lamp; });
        if (entry != entries_.end())
            entry->lamp.set(change.on, now);
    }
    return update(now);
}

std::vector<DeviceLamps::Change> DeviceLamps::switchAllOff()
{
    for (Entry& entry : entries_)
        entry.lamp = {};
    return update({});
}

std::vector<DeviceLamps::Change> DeviceLamps::update(Time now)
{
    std::vector<Change> changed;
    for (Entry& entry : entries_) {
        const LampState state = entry.lamp.state(now);
        if (state != entry.state)
            changed.push_back({entry.info.name, state});
        entry.state = state;
    }
    return changed;
}

bool DeviceLamps::anyBlinks() const
{
    return std::ranges::any_of(
        entries_, [](const Entry& entry) { return entry.state == LampState::kBlink; });
}

std::optional<LampState> DeviceLamps::state(std::string_view lamp) const
{
    const auto entry = std::ranges::find_if(
        entries_, [lamp](const Entry& each) { return each.info.name == lamp; });
    return entry == entries_.end() ? std::nullopt : std::optional(entry->state);
}

std::vector<std::string_view> DeviceLamps::names() const
{
    std::vector<std::string_view> list;
    for (const Entry& entry : entries_)
        list.push_back(entry.info.name);
    return list;
}

Json::Value DeviceLamps::json() const
{
    Json::Value list = Json::arrayValue;
    for (const Entry& entry : entries_) {
        Json::Value lamp;
        lamp["name"] = entry.info.name;
        lamp["label"] = entry.info.label;
        lamp["usage"] = usageText(entry.info.usage);
        lamp["state"] = nameOf(entry.state);
        list.append(lamp);
    }
    return list;
}

} // namespace sim
