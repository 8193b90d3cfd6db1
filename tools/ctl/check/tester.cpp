#include "tools/ctl/check/tester.h"

#include "tools/ctl/cli/failure.h"

#include <algorithm>
#include <cassert>

namespace ctl {

using std::chrono::milliseconds;
using Kind = Entry::Kind;
using State = Operator::State;

Tester::Tester(
    EventLoop& loop, const Subject& subject, Operators operators, const CheckTimes& times)
    : loop_(loop)
    , subject_(subject)
    , operators_(operators)
    , times_(times)
    , device_(subject.descriptor)
    , journal_([this](const Entry& entry) {
        gone_ = gone_ || entry.kind == Kind::kGone;
        entries_.push_back(entry);
    })
{
    open();
}

void Tester::open()
{
    session_ = subject_.open(journal_);
    trusted_ = true;
}

void Tester::close()
{
    session_.reset();
    gone_ = false; // and nothing is read from now on
}

bool Tester::enter(CallState state)
{
    const bool active = isOffHook(state);
    if (!trusted_ || !session_ || (meeting().meetingStatus() && !active)) {
        close(); // there is no other way to end a meeting
        open();
    }
    meeting().toggleHangup();
    if (meeting().muteState())
        meeting().toggleMuteUnmute();
    watch(times_.settle());
    const size_t begin = now();
    if (active && !meeting().meetingStatus()) {
        meeting().toggleRing();
        meeting().togglePickup();
    }
    if (state == CallState::kRinging || state == CallState::kWaiting)
        meeting().toggleRing();
    if (state == CallState::kMuted)
        meeting().toggleMuteUnmute();
    watch(times_.settle());
    return eventsSince(begin).empty();
}

std::vector<Entry> Tester::since(size_t moment) const
{
    return {entries_.begin() + static_cast<ptrdiff_t>(moment), entries_.end()};
}

std::vector<Entry> Tester::since(size_t moment, Kind kind) const
{
    std::vector<Entry> found = since(moment);
    std::erase_if(found, [kind](const Entry& entry) { return entry.kind != kind; });
    return found;
}

std::vector<Kind> Tester::eventsSince(size_t moment) const
{
    std::vector<Kind> events;
    for (const Entry& entry : since(moment))
        if (isEvent(entry.kind))
            events.push_back(entry.kind);
    return events;
}

void Tester::watch(milliseconds time)
{
    (void)waitUntil([] { return false; }, time);
}

bool Tester::waitUntil(const EventLoop::Condition& condition, milliseconds limit)
{
    return loop_.waitUntil(
        journal_,
        [&] {
            if (gone_ && !mayGo_)
                throw Gone();
            return condition();
        },
        limit);
}

// Whether there was an event, or there were reports but none for some time.
bool Tester::settled(size_t moment) const
{
    if (!eventsSince(moment).empty())
        return true;
    const auto received = since(moment, Kind::kReceived);
    return !received.empty()
        && std::chrono::steady_clock::now() - received.back().arrival > times_.pause();
}

// `reaction` is how long the device may take for its reaction after the operator was done.
State Tester::act(
    Operator& whoActs, Action action, const EventLoop::Condition& reacted, milliseconds reaction)
{
    whoActs.begin(action);
    const auto isDone
        = [&] { return whoActs.state() != State::kBusy || (!whoActs.reportsEnd() && reacted()); };
    (void)waitUntil(isDone, times_.press);
    actionEnd_ = std::chrono::steady_clock::now();
    const State state = whoActs.state();
    if (state == State::kDone)
        (void)waitUntil(reacted, reaction);
    whoActs.end();
    return state == State::kBusy && reacted() ? State::kDone : state;
}

const Press* Tester::declined(Action action) const
{
    const auto found = std::find_if(presses_.begin(), presses_.end(), [action](const Press& press) {
        return press.action == action && press.state == State::kDeclined;
    });
    return found == presses_.end() ? nullptr : &*found;
}

// Whether the last report since `moment` does not have the control on.
bool Tester::isReleased(size_t moment, Action action) const
{
    const auto received = since(moment, Kind::kReceived);
    return received.empty() || !device_.isOn(controlOf(action), received.back().report);
}

Press Tester::press(Action action)
{
    if (const Press* const before = declined(action))
        return *before;
    const size_t begin = now();
    const auto start = std::chrono::steady_clock::now();
    Press press{.action = action};
    press.state = act(
        operators_.presses, action, [&] { return settled(begin); }, times_.reaction);
    if (press.state == State::kDeclined || press.state == State::kFailed)
        press.reason = operators_.presses.reason();
    // A late release would count as a report of the next test.
    if (!operators_.presses.reportsEnd())
        (void)waitUntil([&] { return isReleased(begin, action); }, times_.reaction);
    watch(times_.settle()); // also for what should not follow
    for (const Entry& entry : since(begin, Kind::kReceived))
        press.received.push_back(entry.report);
    press.events = eventsSince(begin);
    measure(press, begin, start);
    presses_.push_back(press);
    return press;
}

void Tester::measure(Press& press, size_t moment, Time start) const
{
    const std::vector<Entry> entries = since(moment);
    const auto event = std::find_if(
        entries.begin(), entries.end(), [](const Entry& entry) { return isEvent(entry.kind); });
    const auto report = std::find_if(
        entries.begin(), event, [](const Entry& entry) { return entry.kind == Kind::kReceived; });
    if (event == entries.end() || report == event)
        return;
    const auto until = [event](Time time) {
        return std::max(std::chrono::ceil<milliseconds>(event->arrival - time), milliseconds{});
    };
    press.sinceReport = until(report->arrival);
    if (!operators_.presses.reportsEnd())
        return;
    press.sinceCommand = until(start);
    press.sinceCommandEnd = until(actionEnd_);
}

Outcome Tester::unplug()
{
    assert(canReplug());
    Operator& plugs = *operators_.plugs;
    mayGo_ = true;
    const State state = act(
        plugs, Action::kUnplug, [this] { return gone_; }, times_.reaction);
    mayGo_ = false;
    if (gone_) {
        close();
        return {};
    }
    if (state == State::kDeclined)
        return skipped(plugs.reason());
    return failed(state == State::kFailed
            ? plugs.reason()
            : "The device was to be unplugged, but reading from it did not fail.");
}

Outcome Tester::replug()
{
    assert(canReplug());
    Operator& plugs = *operators_.plugs;
    Time last;
    const State state = act(
        plugs, Action::kReplug, [&] { return tryToOpen(last); }, times_.replug);
    if (session_)
        return {};
    return failed(state == State::kFailed
            ? plugs.reason()
            : "The device could not be opened after it was plugged in again.");
}

// Called again and again. Enumerates the devices, so not each time.
bool Tester::tryToOpen(Time& last)
{
    constexpr milliseconds interval{200};
    const auto time = std::chrono::steady_clock::now();
    if (session_ || time - last < interval)
        return session_ != nullptr;
    last = time;
    try {
        open();
    } catch (const Failure&) {
        return false;
    }
    return true;
}

std::optional<bool> Tester::ask(const std::string& question)
{
    if (!operators_.presses.sees())
        return std::nullopt;
    operators_.presses.ask(question);
    (void)waitUntil([this] { return operators_.presses.state() != State::kBusy; }, times_.press);
    switch (operators_.presses.state()) {
    case State::kDone:
        return true;
    case State::kFailed:
        return false;
    default:
        return std::nullopt;
    }
}

} // namespace ctl
