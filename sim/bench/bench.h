// The simulated devices and their events.
#pragma once

#include "sim/bench/bench_device.h"
#include "sim/bench/command.h"
#include "sim/bench/event_queue.h"

#include <list>
#include <set>

namespace sim {

// The bench's thread calls these.
class BenchListener {
public:
    using Time = std::chrono::microseconds; // since the bench started

    virtual ~BenchListener() = default;
    virtual void onEvent(const BenchEvent& event) = 0; // must not execute commands
    // Called at nextTick(), if not before, and after events.
    virtual void onTick() { }
    [[nodiscard]] virtual std::optional<Time> nextTick() const { return std::nullopt; }
    // Whether it waits for events.
    [[nodiscard]] virtual bool needsEvents() const { return false; }
};

// Only the thread that makes the object may use it.
class Bench {
public:
    static constexpr std::chrono::milliseconds kQuiet{200}; // without reports, of an idle device

    // Plugs in a device for each profile, in this order. Throws std::runtime_error.
    Bench(UsbBus& bus, EventQueue& queue, std::span<const Profile> profiles);
    ~Bench();
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    std::list<BenchDevice>& devices() { return devices_; }
    BenchDevice& device(size_t number); // from 1

    // A listener gets each event that dispatch() takes from then on. It must be removed before it
    // is destroyed. These must not be called from onEvent().
    void add(BenchListener& listener) { listeners_.insert(&listener); }
    void remove(BenchListener& listener) { listeners_.erase(&listener); }

    // Passes the events in the queue to the listeners. Called around each command, so that what it
    // has caused is known before its answer.
    void dispatch();

    // Does that unless isHeld(), and then calls onTick(). To be called when the queue's descriptor
    // is readable, and at nextTick().
    void tick();
    [[nodiscard]] std::optional<BenchListener::Time> nextTick() const;
    [[nodiscard]] int fd() const { return queue_.fd(); }

    // Ends the program and the bench.
    void quit() { onQuit(); }
    std::function<void()> onQuit = [] {};
    // While this is true, no device is idle.
    std::function<bool()> isPlaying = [] { return false; };
    // Whether the bench's output is read too slowly, or not at all.
    std::function<bool()> outputIsFull = [] { return false; };
    // While this is true, tick() takes no events, so that the program waits when the queue is full:
    // while the output is full, unless a listener needs events.
    [[nodiscard]] bool isHeld() const;

    [[nodiscard]] CommandResult checkIdle(BenchDevice& device);
    [[nodiscard]] Json::Value devicesJson();
    [[nodiscard]] std::chrono::microseconds now() const { return queue_.now(); }

private:
    EventQueue& queue_;
    std::list<BenchDevice> devices_;
    std::set<BenchListener*> listeners_;
};

} // namespace sim
