// The device under test: brings its meeting into a state, has things done to it and collects what
// happens.
#pragma once

#include "tools/ctl/check/call_state.h"
#include "tools/ctl/check/device_facts.h"
#include "tools/ctl/check/operator.h"
#include "tools/ctl/check/watched_step.h"
#include "tools/ctl/meeting/event_loop.h"
#include "tools/ctl/meeting/session.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace ctl {

// What is tested.
struct Subject {
    std::string name; // ids and product
    report::Bytes descriptor;
    std::function<std::unique_ptr<Session>(Journal&)> open; // throws Failure
    bool isRecording = false;                               // no device: nothing shows LEDs
    Reports recorded = {};                                  // the recording's input reports
};

struct CheckTimes {
    using Milliseconds = std::chrono::milliseconds;

    Milliseconds silence{1000};  // in which nothing may happen by itself
    Milliseconds press{20'000};  // for a person or a command
    Milliseconds reaction{2000}; // of the device after a press
    Milliseconds replug{10'000}; // until the device can be opened after it was plugged in
};

// What came of one action.
struct Press {
    Action action = Action::kHook;
    Operator::State state = Operator::State::kDone; // kBusy: it took too long
    std::string reason = {};                        // of kDeclined and kFailed
    Reports received = {};
    std::vector<Entry::Kind> events = {};

    struct Latency { // until the first event
        std::chrono::milliseconds sinceReport{};
        std::chrono::milliseconds sinceCommand{};    // from its beginning
        std::chrono::milliseconds sinceCommandEnd{}; // 0 if the event came before
    };
    std::optional<Latency> latency = {}; // only if the operator is timed and there was an event

    // Whether the device sent nothing, although it was not declined and did not fail.
    [[nodiscard]] bool isSilent() const
    {
        return received.empty()
            && (state == Operator::State::kDone || state == Operator::State::kBusy);
    }
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
    // What happened in the last enter().
    [[nodiscard]] const Entries& entering() const { return entering_; }

    // Takes the step and watches the device for the time of silence, on the first call for it.
    // Later calls return the same.
    const WatchedStep& watchStep(Step step);

    // Waits until nothing has been sent or received for some time, which depends on how fast the
    // device reacted in the steps. Not longer than twice the time of silence.
    void settle();

    // After a failure: the next enter() opens the device again.
    void distrust() { trusted_ = false; }

    // A moment, for the functions below.
    [[nodiscard]] size_t now() const { return entries_.size(); }
    [[nodiscard]] Entries since(size_t moment) const;

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

    // Whether it is known how long the device takes to react to a press.
    [[nodiscard]] bool timesPresses() const { return operators_.presses.isTimed(); }

    // Whether there is a person to ask.
    [[nodiscard]] bool isSeen() const { return operators_.presses.sees(); }
    // Asks the person. No value without an answer.
    [[nodiscard]] std::optional<bool> ask(const std::string& question);

private:
    using Time = std::chrono::steady_clock::time_point;

    void add(const Entry& entry);
    void takeStep(Step step);
    void learnFrom(const Entries& entries);
    [[nodiscard]] std::chrono::milliseconds quietTime() const;
    [[nodiscard]] bool settled(size_t moment) const;
    [[nodiscard]] bool isReleased(size_t moment, Action action) const;
    [[nodiscard]] const Press* declined(Action action) const;
    void waitForRelease(size_t moment, Action action);
    Operator::State act(Operator& whoActs, Action action, const EventLoop::Condition& reacted,
        std::chrono::milliseconds reaction);
    [[nodiscard]] std::optional<Press::Latency> latency(size_t moment, Time start) const;
    bool tryToOpen(Time& last);

    EventLoop& loop_;
    const Subject& subject_;
    const Operators operators_;
    const CheckTimes times_;
    const DeviceFacts device_;
    Entries entries_;
    Entries entering_;
    std::map<Step, WatchedStep> steps_;
    std::vector<Press> presses_;
    Time lastTraffic_;                    // of the controls' reports
    std::chrono::microseconds slowest_{}; // from an output report to an input report, in the steps
    bool gone_ = false;
    bool mayGo_ = false; // unplugging is part of the test
    bool trusted_ = true;
    Time actionEnd_; // when the last operator was done
    Journal journal_;
    std::unique_ptr<Session> session_; // null while closed
};

} // namespace ctl
