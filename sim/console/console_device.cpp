#include "sim/console/console_device.h"

#include <stdexcept>

namespace sim {

ConsoleDevice::ConsoleDevice(
    UsbBus& bus, const UsbDeviceInfo& info, size_t number, Transcript& transcript)
    : number_(number)
    , transcript_(transcript)
    , panel_(info.reportDescriptor)
    , device_(bus, info)
{
    device_.setEventCallback([this](const DeviceEvent& event) { printEvent(event); });
    device_.plug();
}

void ConsoleDevice::printEvent(const DeviceEvent& event)
{
    switch (event.kind) {
    case DeviceEvent::Kind::kOutput:
        print(describe(panel_.applyOutput(event.report), event.report));
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
    }
}

void ConsoleDevice::press(Button button)
{
    send(panel_.press(button));
}

void ConsoleDevice::setHook(HookPosition position)
{
    send(panel_.setHook(position));
}

void ConsoleDevice::sendRaw(const Bytes& report)
{
    send("raw report", report);
}

void ConsoleDevice::send(const std::vector<Panel::InputReport>& reports)
{
    if (reports.empty())
        print("the device has no such button");
    for (const Panel::InputReport& input : reports)
        send(input.what, input.report);
}

// Prints before it sends, because the program's reaction is printed on another thread.
void ConsoleDevice::send(const std::string& what, const Bytes& report)
{
    const bool listening = device_.isPlugged() && !device_.driverBound();
    print(describe(what, report) + (listening ? "" : "  (no program listens)"));
    device_.inject(report);
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
    const Bytes report = panel_.idleReport();
    while (reports-- > 0 && device_.inject(report)) { }
    return true;
}

} // namespace sim
