// The device under test: brings its meeting into a state, has things done to it and collects what
// happens.
#pragma once

#include "tools/ctl/check/call_state.h"
#include "tools/ctl/check/device_facts.h"
#include "tools/ctl/check/operator.h"
#include "tools/ctl/meeting/event_loop.h"
#include "tools/ctl/meeting/session.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>

namespace ctl {

// What is tested.
struct Subject {
    std::string name; // ids and product
    report::Bytes descriptor;
    std::function<std::unique_ptr<Session>(Journal&)> open; // throws Failure
    bool isRecording = false;                               // no device: nothing shows LEDs
};

struct CheckTimes {
    using Milliseconds = std::chrono::milliseconds;

    Milliseconds silence{1000};  // in which nothing may happen by itself
    Milliseconds press{20'000};  // for a person or a command
    Milliseconds reaction{2000}; // of the device after a press
    Milliseconds replug{10'000}; // until the device can be opened after it was plugged in

    [[nodiscard]] Milliseconds settle() const { return silence / 4; }
    // After a report without an event: the event may come late on a busy machine.
    [[nodiscard]] Milliseconds pause() const { return std::max(settle(), Milliseconds(250)); }
};

// What came of one action.
struct Press {
    Action action = Action::kHook;
    Operator::State state = Operator::State::kDone; // kBusy: it took too long
    std::string reason = {};                        // of kDeclined and kFailed
    Reports received = {};
    std::vector<Entry::Kind> events = {};
    // From the report until the first event.
    std::optional<std::chrono::milliseconds> sinceReport = {};
    // The same from the beginning and from the end of the command that pressed, 0 if the event came
    // before the end. Not for a person, whose presses nobody times.
    std::optional<std::chrono::milliseconds> sinceCommand = {};
    std::chrono::milliseconds sinceCommandEnd{};
};

// Who acts. Both must outlive the tester.
struct Operators {
    Operator& presses;
    Operator* plugs = nullptr; // null: the device stays plugged in
};

// Belongs to the thread of the event loop. Everything that waits throws EventLoop::Stopped, Gone
// and Failure.
class Tester {
public:
    // Thrown while waiting when the device has gone.
    struct Gone { };

    // Opens the device. `loop` and `subject` must outlive the object.
    Tester(EventLoop& loop, const Subject& subject, Operators operators, const CheckTimes& times);
    Tester(const Tester&) = delete;
    Tester& operator=(const Tester&) = delete;

    [[nodiscard]] const Subject& subject() const { return subject_; }
    [[nodiscard]] const DeviceFacts& device() const { return device_; }
    [[nodiscard]] const CheckTimes& times() const { return times_; }
    [[nodiscard]] const std::vector<Press>& presses() const { return presses_; }

    [[nodiscard]] HidController& meeting() { return session_->meeting(); }
    void open();
    void close();

    // Brings the meeting into a state and lets the device settle. False if there was an event of
    // the device meanwhile: it is in another state then.
    [[nodiscard]] bool enter(CallState state);

    // After a failure: the next enter() opens the device again.
    void distrust() { trusted_ = false; }

    // A moment, for the functions below.
    [[nodiscard]] size_t now() const { return entries_.size(); }
    [[nodiscard]] std::vector<Entry> since(size_t moment) const;
    [[nodiscard]] std::vector<Entry> since(size_t moment, Entry::Kind kind) const;
    [[nodiscard]] std::vector<Entry::Kind> eventsSince(size_t moment) const;

    // Lets time pass.
    void watch(std::chrono::milliseconds time);

    // Waits until the condition is true. False after the limit.
    bool waitUntil(const EventLoop::Condition& condition, std::chrono::milliseconds limit);

    // Has a button pressed, waits for the device's reaction and for what follows it. What was
    // declined once is declined again. Remembers the press.
    Press press(Action action);

    [[nodiscard]] bool canReplug() const { return operators_.plugs != nullptr; }
    // Has the device unplugged. A failure or a skip if it did not happen.
    [[nodiscard]] Outcome unplug();
    // Has it plugged in and opens it. The same.
    [[nodiscard]] Outcome replug();

    // Asks the person, if there is one. No value without an answer.
    [[nodiscard]] std::optional<bool> ask(const std::string& question);

private:
    using Time = std::chrono::steady_clock::time_point;

    [[nodiscard]] bool settled(size_t moment) const;
    [[nodiscard]] bool isReleased(size_t moment, Action action) const;
    [[nodiscard]] const Press* declined(Action action) const;
    Operator::State act(Operator& whoActs, Action action, const EventLoop::Condition& reacted,
        std::chrono::milliseconds reaction);
    void measure(Press& press, size_t moment, Time start) const;
    bool tryToOpen(Time& last);

    EventLoop& loop_;
    const Subject& subject_;
    const Operators operators_;
    const CheckTimes times_;
    const DeviceFacts device_;
    std::vector<Entry> entries_;
    std::vector<Press> presses_;
    bool gone_ = false;
    bool mayGo_ = false; // unplugging is part of the test
    bool trusted_ = true;
    Time actionEnd_; // when the last operator was done
    Journal journal_;
    std::unique_ptr<Session> session_; // null while closed
};

} // namespace ctl
