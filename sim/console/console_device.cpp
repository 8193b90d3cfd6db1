#include "sim/console/console_device.h"

#include <stdexcept>

namespace sim {
namespace {

constexpr auto kFlood = "flood"; // has no line for each report

// "hook switch off" for "hook off".
std::string words(std::string cause)
{
    if (cause.starts_with("hook "))
        cause.insert(cause.find(' '), " switch");
    if (cause.starts_with("busy "))
        cause.insert(0, "line ");
    return cause;
}

// "ring LED on, hold LED off".
std::string changes(const std::vector<LampChange>& lamps)
{
    std::string text;
    for (const LampChange& change : lamps)
        text += (text.empty() ? "" : ", ") + change.lamp + (change.on ? " LED on" : " LED off");
    return text.empty() ? "no change" : text;
}

} // namespace

ConsoleDevice::ConsoleDevice(
    UsbBus& bus, const UsbDeviceInfo& info, size_t number, Transcript& transcript)
    : number_(number)
    , transcript_(transcript)
    , device_(bus, info)
{
    device_.setEventCallback([this](const DeviceEvent& event) { printEvent(event); });
    device_.plug();
}

void ConsoleDevice::printEvent(const DeviceEvent& event)
{
    switch (event.kind) {
    case DeviceEvent::Kind::kInput:
        if (event.cause != kFlood)
            print(describe(words(event.cause), event.report)
                + (event.delivery == Delivery::kNoListener ? "  (no program listens)" : ""));
        break;
    case DeviceEvent::Kind::kOutput:
        print(describe(changes(event.lamps), event.report));
        break;
    case DeviceEvent::Kind::kOutputRefused:
        print(describe("write refused", event.report));
        break;
    case DeviceEvent::Kind::kClaimRefused:
        print("claim refused");
        break;
    case DeviceEvent::Kind::kDetachRefused:
        print("detach refused");
        break;
    case DeviceEvent::Kind::kOpened:
    case DeviceEvent::Kind::kClosed:
        break;
    }
}

void ConsoleDevice::press(std::string_view button)
{
    if (!device_.push(button))
        print("the device has no such button");
}

void ConsoleDevice::setHook(HookPosition position)
{
    if (!device_.setHook(position))
        print("the device has no such button");
}

void ConsoleDevice::sendRaw(const Bytes& report)
{
    device_.inject(report, "raw report");
}

void ConsoleDevice::unplug()
{
    device_.unplug();
    print("unplugged");
}

void ConsoleDevice::replug()
{
    device_.unplug();
    print("plugged in"); // first: the program may set an LED at once
    try {
        device_.plug();
    } catch (const std::runtime_error& error) {
        print(std::string("cannot be plugged in: ") + error.what());
    }
}

bool ConsoleDevice::setFault(std::string_view name, std::optional<int> number)
{
    if (name == "none")
        clearFaults();
    else if (name == "open")
        device_.setOpenable(false);
    else if (name == "flood" && number) {
        if (!flood(*number))
            return false;
    } else if (name == "short" && number) {
        device_.faults().shortLength = static_cast<size_t>(*number);
        device_.faults().shortenReportDescriptor.arm();
    } else if (!armFault(name, number.value_or(Fault::kAlways)))
        return false;
    print("fault " + std::string(name) + (number ? " " + std::to_string(*number) : ""));
    return true;
}

bool ConsoleDevice::armFault(std::string_view name, int times)
{
    DeviceFaults& faults = device_.faults();
    const struct {
        std::string_view name;
        Fault& fault;
    } byName[] = {
        {"claim", faults.refuseClaim},
        {"detach", faults.refuseDetach},
        {"stall", faults.stallReportDescriptor},
        {"write", faults.failWrite},
    };
    for (const auto& entry : byName) {
        if (entry.name == name) {
            entry.fault.arm(times);
            return true;
        }
    }
    return false;
}

void ConsoleDevice::clearFaults()
{
    device_.faults().clear();
    device_.setOpenable(true);
}

// Commands and signals are not handled meanwhile.
bool ConsoleDevice::flood(int reports)
{
    if (static_cast<size_t>(reports) > UrbQueue::kMaxInput)
        return false;
    const Bytes report = device_.panel().stateReport();
    while (reports-- > 0 && device_.inject(report, kFlood)) { }
    return true;
}

} // namespace sim
