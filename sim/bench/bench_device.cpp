#include "sim/bench/bench_device.h"

#include "sim/bench/command_words.h"
#include "sim/bench/device_json.h"

#include <json/value.h>

#include <cassert>

namespace sim {
namespace {

using Kind = BenchEvent::Kind;

constexpr const char* kFloodCause = "flood";

Kind kindOf(DeviceEvent::Kind kind)
{
    switch (kind) {
    case DeviceEvent::Kind::kInput:
        return Kind::kInput;
    case DeviceEvent::Kind::kOutput:
        return Kind::kOutput;
    case DeviceEvent::Kind::kFeature:
        return Kind::kFeature;
    case DeviceEvent::Kind::kOutputRefused:
        return Kind::kWriteRefused;
    case DeviceEvent::Kind::kOpened:
        return Kind::kOpened;
    case DeviceEvent::Kind::kClosed:
        return Kind::kClosed;
    case DeviceEvent::Kind::kClaimRefused:
        return Kind::kClaimRefused;
    case DeviceEvent::Kind::kRequestFailed:
        return Kind::kFault;
    case DeviceEvent::Kind::kDetachRefused:
        break;
    }
    return Kind::kDetachRefused;
}

// Whether an event of the queue stands for what may have changed, for which others follow.
bool asksForChanges(const BenchEvent& event)
{
    return event.kind == Kind::kLamp || event.kind == Kind::kHook
        || (event.kind == Kind::kFault && event.name.empty());
}

} // namespace

BenchDevice::BenchDevice(UsbBus& bus, const Profile& profile, size_t number, EventQueue& queue)
    : profile_(profile)
    , number_(number)
    , queue_(queue)
    , device_(bus, profile.info)
    , lamps_(device_.panel().lamps())
    , faults_(device_)
    , hook_(device_.panel().hook())
{
    device_.setEventCallback([this](const DeviceEvent& event) { addDeviceEvent(event); });
    device_.plug();
}

void BenchDevice::add(Kind kind, std::string name, std::string state)
{
    queue_.add(
        {.device = number_, .kind = kind, .name = std::move(name), .state = std::move(state)});
}

void BenchDevice::note(const std::string& text)
{
    add(Kind::kNote, text);
}

// On any thread.
void BenchDevice::addDeviceEvent(const DeviceEvent& event)
{
    if (event.cause == kFloodCause)
        return;
    BenchEvent added{.device = number_, .kind = kindOf(event.kind), .report = event.report};
    added.cause = event.cause;
    added.delivery = event.delivery;
    added.changes = event.lamps;
    added.hook = event.hook;
    if (event.interface != device_.controlsNumber())
        added.interface = event.interface;
    queue_.add(std::move(added));
}

CommandResult BenchDevice::noButton(std::string_view name)
{
    std::vector<std::string> buttons;
    for (const Panel::ButtonState& button : device_.panel().buttons())
        buttons.push_back(button.name);
    const std::vector<std::string_view> names(buttons.begin(), buttons.end());
    return {
        kNotUnderstood, "the device has no button " + std::string(name) + suggestion(name, names)};
}

CommandResult BenchDevice::checkCanSend() const
{
    if (!device_.info().controls().isHid())
        return {kNotMet, "the device has no HID interface"};
    if (!device_.isPlugged())
        return {kNotMet, "the device is unplugged"};
    return {};
}

CommandResult BenchDevice::checkButton(std::string_view name)
{
    return device_.panel().hasButton(name) ? checkCanSend() : noButton(name);
}

CommandResult BenchDevice::press(std::string_view button, Press press)
{
    CommandResult possible = checkButton(button);
    if (possible.status == kDone) {
        (void)(press == Press::kHold ? device_.press(button) : device_.push(button));
        announceHook();
    }
    return possible;
}

CommandResult BenchDevice::release(std::string_view button)
{
    CommandResult possible = checkButton(button);
    if (possible.status == kDone) {
        (void)device_.release(button);
        announceHook();
    }
    return possible;
}

// The hook switch moves at once; its report may come later.
void BenchDevice::announceHook()
{
    if (device_.hasDelayedReports())
        queue_.add({.device = number_, .kind = Kind::kHook, .hook = device_.panel().hook()});
}

CommandResult BenchDevice::sendRaw(const Bytes& report)
{
    CommandResult possible = checkCanSend();
    if (possible.status == kDone)
        device_.inject(report, BenchEvent::kRawCause);
    return possible;
}

void BenchDevice::sendRecorded(const Bytes& report)
{
    assert(device_.info().controls().isHid());
    device_.inject(report, BenchEvent::kRecordedCause);
}

CommandResult BenchDevice::unplug()
{
    if (device_.isPlugged()) {
        device_.unplug();
        queue_.add({.device = number_, .kind = Kind::kUnplugged, .hook = device_.panel().hook()});
    }
    return {};
}

CommandResult BenchDevice::replug()
{
    unplug();
    add(Kind::kPlugged); // first: the program may set a lamp at once
    try {
        device_.plug();
    } catch (const std::runtime_error& error) {
        add(Kind::kUnplugged);
        return {kNotMet, std::string("the device cannot be plugged in: ") + error.what()};
    }
    return {};
}

CommandResult BenchDevice::setFault(std::string_view name, std::string_view number)
{
    const bool off = number == "off";
    const std::optional<int> given = parseNumber(number);
    if (!given && !off && !number.empty())
        return {kNotUnderstood, "expected a number or off, not " + std::string(number)};
    if (name == FaultSwitches::kFlood)
        return flood(given.value_or(0));
    CommandResult result;
    if (name != FaultSwitches::kNone)
        result = off ? faults_.switchOff(name) : faults_.switchOn(name, given);
    else if (number.empty())
        faults_.switchAllOff();
    else
        result = {kNotUnderstood, "fault none takes no number"};
    for (const FaultSwitches::Change& change : faults_.takeChanges())
        add(Kind::kFault, std::string(change.name), change.armed ? "on" : "off");
    return result;
}

// Other commands and signals are not handled meanwhile.
CommandResult BenchDevice::flood(int reports)
{
    if (reports < 1 || static_cast<size_t>(reports) > UrbQueue::kMaxInput)
        return {kNotUnderstood,
            "fault flood takes a number of reports from 1 to "
                + std::to_string(UrbQueue::kMaxInput)};
    if (CommandResult possible = checkCanSend(); possible.status != kDone)
        return possible;
    const Bytes report = device_.panel().stateReport();
    const auto wanted = static_cast<size_t>(reports);
    size_t sent = 0;
    while (sent < wanted && device_.inject(report, kFloodCause))
        ++sent;
    const auto addReports = [&](size_t count, Delivery delivery) {
        if (count > 0)
            queue_.add({.device = number_,
                .kind = Kind::kInput,
                .report = report,
                .cause = kFloodCause,
                .delivery = delivery,
                .count = count});
    };
    addReports(sent, Delivery::kQueued);
    if (sent == wanted)
        return {};
    const bool hasListener = device_.claimed();
    addReports(wanted - sent, hasListener ? Delivery::kQueueFull : Delivery::kNoListener);
    return {kNotMet,
        hasListener ? "the program reads too slowly: " + std::to_string(wanted - sent)
                + " of the reports are lost"
                    : "no program listens"};
}

const Bytes& BenchDevice::reportDescriptor() const
{
    return device_.info().controls().reportDescriptor;
}

bool BenchDevice::hasReportsToSend()
{
    return device_.hasDelayedReports();
}

bool BenchDevice::allRead()
{
    return device_.waitUntilRead(std::chrono::milliseconds(0));
}

void BenchDevice::explain(BenchEvent& event)
{
    using report::ReportKind;
    if (event.interface)
        return;
    if (event.kind == Kind::kInput)
        event.meaning = device_.panel().meaning(ReportKind::kInput, event.report);
    else if (event.kind == Kind::kOutput)
        event.meaning = device_.panel().meaning(ReportKind::kOutput, event.report);
    else if (event.kind == Kind::kFeature)
        event.meaning = device_.panel().meaning(ReportKind::kFeature, event.report);
}

std::vector<BenchEvent> BenchDevice::complete(BenchEvent event)
{
    if (event.kind == Kind::kInput || event.kind == Kind::kOutput)
        lastReport_ = event.time;
    if (!event.interface && (event.kind == Kind::kOpened || event.kind == Kind::kClosed))
        open_ = event.kind == Kind::kOpened;
    if (event.kind == Kind::kPlugged || event.kind == Kind::kUnplugged)
        plugged_ = event.kind == Kind::kPlugged;
    if (event.kind == Kind::kUnplugged)
        device_.panel().forgetReports(); // all that were sent before have been explained
    explain(event);
    const auto following = [&event](Kind kind, std::string_view name, const std::string& state) {
        BenchEvent next{.device = event.device, .kind = kind, .time = event.time};
        next.name = name;
        next.state = state;
        return next;
    };
    const auto changes = plugged_ ? lamps_.apply(event.changes, event.time) : lamps_.switchAllOff();
    lampsUpdated_ = event.time;
    std::vector<BenchEvent> events;
    if (!asksForChanges(event))
        events.push_back(event);
    for (const DeviceLamps::Change& change : changes)
        events.push_back(following(Kind::kLamp, change.lamp, nameOf(change.state)));
    if (event.hook && event.hook != hook_) {
        hook_ = event.hook;
        events.push_back(following(Kind::kHook, "", hookText()));
        events.back().cause = event.cause;
    }
    for (const FaultSwitches::Change& change : faults_.takeChanges())
        events.push_back(following(Kind::kFault, change.name, change.armed ? "on" : "off"));
    return events;
}

void BenchDevice::announceLamps()
{
    if (const auto time = blinkCheck(); time && *time <= queue_.now())
        add(Kind::kLamp);
}

std::optional<std::chrono::microseconds> BenchDevice::blinkCheck() const
{
    constexpr std::chrono::milliseconds kInterval{100};
    if (!lamps_.anyBlinks())
        return std::nullopt;
    return lampsUpdated_ + kInterval;
}

std::string BenchDevice::hookText() const
{
    return !hook_ ? "" : *hook_ == HookPosition::kOffHook ? "off" : "on";
}

Json::Value BenchDevice::json()
{
    Json::Value object = deviceJson(profile_, device_.panel().buttons());
    object["number"] = Json::UInt64{number_};
    object["plugged"] = device_.isPlugged();
    object["open"] = open_;
    const std::string hook = hookText();
    object["hook"] = hook.empty() ? Json::Value() : Json::Value(hook);
    object["lamps"] = lamps_.json();
    object["faults"] = faults_.json();
    return object;
}

std::string BenchDevice::summary()
{
    const std::string hook = hookText();
    return std::to_string(number_) + "  " + summaryOf(profile_) + "  "
        + (!device_.isPlugged() ? "unplugged"
                : open_         ? "open"
                                : "closed")
        + (hook.empty() ? "" : ", hook " + hook);
}

} // namespace sim
