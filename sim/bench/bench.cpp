#include "sim/bench/bench.h"

#include "sim/bench/command_words.h"

#include <json/value.h>

#include <algorithm>
#include <cassert>
#include <iterator>

namespace sim {

// The last device is plugged in first, because the system lists the newest device first.
Bench::Bench(UsbBus& bus, EventQueue& queue, std::span<const Profile> profiles)
    : queue_(queue)
{
    for (size_t number = profiles.size(); number > 0; --number)
        devices_.emplace_front(bus, profiles[number - 1], number, queue_);
}

// umockdev's thread may wait for room in the queue.
Bench::~Bench()
{
    queue_.close();
}

BenchDevice& Bench::device(size_t number)
{
    assert(number >= 1 && number <= devices_.size());
    return *std::next(devices_.begin(), static_cast<std::ptrdiff_t>(number - 1));
}

void Bench::dispatch()
{
    for (const BenchEvent& taken : queue_.take()) {
        for (const BenchEvent& event : device(taken.device).complete(taken)) {
            for (BenchListener* const listener : listeners_)
                listener->onEvent(event);
        }
    }
}

bool Bench::isHeld() const
{
    return outputIsFull() && std::ranges::none_of(listeners_, &BenchListener::needsEvents);
}

void Bench::tick()
{
    if (!isHeld()) {
        for (BenchDevice& device : devices_)
            device.announceLamps();
        dispatch();
    }
    const std::set<BenchListener*> present = listeners_; // a command may make or end another
    for (BenchListener* const listener : present) {
        if (listeners_.contains(listener))
            listener->onTick();
    }
}

std::optional<BenchListener::Time> Bench::nextTick() const
{
    std::optional<BenchListener::Time> next;
    const auto consider = [&next](std::optional<BenchListener::Time> time) {
        if (time && (!next || *time < *next))
            next = time;
    };
    if (!isHeld())
        for (const BenchDevice& device : devices_)
            consider(device.blinkCheck());
    for (const BenchListener* const listener : listeners_)
        consider(listener->nextTick());
    return next;
}

CommandResult Bench::checkIdle(BenchDevice& device)
{
    if (isPlaying())
        return {kNotMet, "the recording is not played yet"};
    if (!device.isOpen())
        return {kNotMet, "the device is closed, not idle"};
    if (device.hasReportsToSend())
        return {kNotMet, "the device has reports to send"};
    if (!device.allRead())
        return {kNotMet, "the program has not read every report"};
    // The device may have sent its last report just now.
    if (!queue_.isEmpty() || now() - device.lastReport() < kQuiet)
        return {kNotMet, "a report was exchanged less than " + durationText(kQuiet) + " ago"};
    return {};
}

Json::Value Bench::devicesJson()
{
    Json::Value object;
    object["devices"] = Json::arrayValue;
    for (BenchDevice& device : devices_)
        object["devices"].append(device.json());
    return object;
}

} // namespace sim
