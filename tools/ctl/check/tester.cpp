#include "tools/ctl/check/tester.h"

#include "tools/ctl/cli/failure.h"

#include <algorithm>
#include <cassert>

namespace ctl {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Kind = Entry::Kind;
using State = Operator::State;

namespace {

CallState stateBefore(Step step)
{
    switch (step) {
    case Step::kMute:
    case Step::kEnd:
        return CallState::kActive;
    case Step::kUnmute:
        return CallState::kMuted;
    default:
        return CallState::kIdle;
    }
}

} // namespace

Tester::Tester(
    EventLoop& loop, const Subject& subject, Operators operators, const CheckTimes& times)
    : loop_(loop)
    , subject_(subject)
    , operators_(operators)
    , times_(times)
    , device_(subject.descriptor)
    , journal_([this](const Entry& entry) { add(entry); })
{
    open();
}

void Tester::add(const Entry& entry)
{
    gone_ = gone_ || entry.kind == Kind::kGone;
    if (entry.kind == Kind::kSent
        || (entry.kind == Kind::kReceived && device_.mayHoldControls(entry.report)))
        lastTraffic_ = entry.arrival;
    entries_.push_back(entry);
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
    const size_t first = now();
    const bool active = isOffHook(state);
    if (!trusted_ || !session_ || (meeting().meetingStatus() && !active)) {
        close(); // there is no other way to end a meeting
        open();
    }
    meeting().toggleHangup();
    if (meeting().muteState())
        meeting().toggleMuteUnmute();
    settle();
    const size_t begin = now();
    if (active && !meeting().meetingStatus()) {
        meeting().toggleRing();
        meeting().togglePickup();
    }
    if (state == CallState::kRinging || state == CallState::kWaiting)
        meeting().toggleRing();
    if (state == CallState::kMuted)
        meeting().toggleMuteUnmute();
    settle();
    entering_ = since(first);
    return eventsIn(since(begin)).empty();
}

const WatchedStep& Tester::watchStep(Step step)
{
    const auto [found, isNew] = steps_.try_emplace(step);
    WatchedStep& watched = found->second;
    if (!isNew)
        return watched;
    if (step != Step::kOpen) {
        watched.entered = enter(stateBefore(step));
        watched.entering = entering_;
    }
    const size_t moment = step == Step::kOpen ? 0 : now();
    takeStep(step);
    watch(times_.silence);
    watched.entries = since(moment);
    learnFrom(watched.entries);
    return watched;
}

void Tester::takeStep(Step step)
{
    switch (step) {
    case Step::kOpen: // the constructor has done it
        break;
    case Step::kRing:
        meeting().toggleRing();
        break;
    case Step::kPickUp:
        meeting().toggleRing();
        meeting().togglePickup();
        break;
    case Step::kMute:
    case Step::kUnmute:
        meeting().toggleMuteUnmute();
        break;
    case Step::kEnd:
        close();
        open();
        break;
    }
}

void Tester::learnFrom(const Entries& entries)
{
    std::optional<Time> sent;
    for (const Entry& entry : entries) {
        if (entry.kind == Kind::kSent)
            sent = entry.arrival;
        else if (sent && entry.kind == Kind::kReceived && device_.mayHoldControls(entry.report))
            slowest_ = std::max(slowest_, duration_cast<microseconds>(entry.arrival - *sent));
    }
}

milliseconds Tester::quietTime() const
{
    if (subject_.isRecording)
        return milliseconds(1); // nothing comes by itself
    // Once the device was watched while idle, while ringing and during a call, more is known.
    const milliseconds least
        = steps_.contains(Step::kPickUp) ? milliseconds(100) : times_.silence / 4;
    const auto learned = duration_cast<milliseconds>(2 * slowest_) + milliseconds(50);
    return std::clamp(learned, std::min(least, times_.silence), times_.silence);
}

void Tester::settle()
{
    const milliseconds quiet = quietTime();
    (void)waitUntil(
        [&] { return steady_clock::now() - lastTraffic_ >= quiet; }, 2 * times_.silence);
}

Entries Tester::since(size_t moment) const
{
    return {entries_.begin() + static_cast<ptrdiff_t>(moment), entries_.end()};
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

// Whether there were reports that may be a press, and an event or no more reports for some time. A
// device may send others, for example of its battery, at any time.
bool Tester::settled(size_t moment) const
{
    const Entries entries = since(moment);
    const auto last = std::find_if(entries.rbegin(), entries.rend(), [this](const Entry& entry) {
        return entry.kind == Kind::kReceived && device_.mayHoldControls(entry.report);
    });
    if (last == entries.rend())
        return false;
    // The event may come late on a busy machine.
    const milliseconds late{subject_.isRecording ? 0 : 250};
    const milliseconds pause = std::max(quietTime(), late);
    return !eventsIn(entries).empty() || steady_clock::now() - last->arrival > pause;
}

// `reaction` is how long the device may take for its reaction after the operator was done.
State Tester::act(
    Operator& whoActs, Action action, const EventLoop::Condition& reacted, milliseconds reaction)
{
    whoActs.begin(action);
    const auto isDone
        = [&] { return whoActs.state() != State::kBusy || (!whoActs.reportsEnd() && reacted()); };
    (void)waitUntil(isDone, times_.press);
    actionEnd_ = steady_clock::now();
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

// Whether the control is off in its last report since `moment`.
bool Tester::isReleased(size_t moment, Action action) const
{
    bool isOn = false;
    for (const Entry& entry : ofKind(since(moment), Kind::kReceived))
        if (device_.mayHold(controlOf(action), entry.report))
            isOn = device_.isOn(controlOf(action), entry.report);
    return !isOn;
}

// A late release would count as a report of the next test. The hook switch may report a position:
// it is only waited for if a person presses it, who may hold it for some time.
void Tester::waitForRelease(size_t moment, Action action)
{
    const bool mayStay = action == Action::kHook && operators_.presses.reportsEnd();
    if (!mayStay && !subject_.isRecording)
        (void)waitUntil([&] { return isReleased(moment, action); }, times_.reaction);
}

Press Tester::press(Action action)
{
    if (const Press* const before = declined(action))
        return *before;
    const size_t begin = now();
    const auto start = steady_clock::now();
    Press press{.action = action};
    press.state = act(
        operators_.presses, action, [&] { return settled(begin); }, times_.reaction);
    if (press.state == State::kDeclined || press.state == State::kFailed)
        press.reason = operators_.presses.reason();
    waitForRelease(begin, action);
    settle(); // also for what should not follow
    for (const Entry& entry : ofKind(since(begin), Kind::kReceived))
        press.received.push_back(entry.report);
    press.events = eventsIn(since(begin));
    if (timesPresses())
        press.latency = latency(begin, start);
    presses_.push_back(press);
    return press;
}

std::optional<Press::Latency> Tester::latency(size_t moment, Time start) const
{
    const Entries entries = since(moment);
    const auto event = std::find_if(
        entries.begin(), entries.end(), [](const Entry& entry) { return isEvent(entry.kind); });
    const Entries received = ofKind({entries.begin(), event}, Kind::kReceived);
    if (event == entries.end() || received.empty())
        return std::nullopt;
    const auto until = [event](Time time) {
        return std::max(std::chrono::ceil<milliseconds>(event->arrival - time), milliseconds{});
    };
    // The last report before the event caused it.
    return Press::Latency{until(received.back().arrival), until(start), until(actionEnd_)};
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
    const auto time = steady_clock::now();
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
