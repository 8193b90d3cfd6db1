#include "sim/console/station.h"

namespace sim {

Station::Station(UsbBus& bus, const UsbDeviceInfo& info, size_t number, Transcript& transcript)
    : number_(number)
    , transcript_(transcript)
    , panel_(info.reportDescriptor)
    , device_(bus, info)
{
    device_.setOutputCallback(
        [this](const Bytes& report) { say(describe(panel_.light(report), report)); });
    device_.plug();
}

void Station::press(Button button)
{
    send(panel_.press(button));
}

void Station::moveHook(HookPosition position)
{
    send(panel_.moveHook(position));
}

void Station::sendRaw(const Bytes& report)
{
    send("raw report", report);
}

void Station::send(const std::vector<Panel::InputReport>& reports)
{
    if (reports.empty())
        say("the device has no such button");
    for (const Panel::InputReport& input : reports)
        send(input.what, input.report);
}

// The line first: the program's answer to the report comes on another thread.
void Station::send(const std::string& what, const Bytes& report)
{
    const bool heard = device_.isPlugged() && !device_.driverBound();
    say(describe(what, report) + (heard ? "" : "  (no program listens)"));
    device_.inject(report);
}

void Station::unplug()
{
    device_.unplug();
    say("unplugged");
}

void Station::replug()
{
    device_.unplug();
    say("plugged in"); // first: the program may light a lamp at once
    device_.plug();
}

bool Station::setFault(std::string_view name, std::optional<int> number)
{
    if (name == "none")
        clearFaults();
    else if (name == "open")
        device_.setOpenable(false);
    else if (name == "flood" && number)
        flood(*number);
    else if (name == "short" && number) {
        device_.faults().shortLength = static_cast<size_t>(*number);
        device_.faults().shortenReportDescriptor.arm();
    } else if (!armFault(name, number.value_or(Fault::kAlways)))
        return false;
    say("fault " + std::string(name) + (number ? " " + std::to_string(*number) : ""));
    return true;
}

bool Station::armFault(std::string_view name, int times)
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

void Station::clearFaults()
{
    device_.faults().clear();
    device_.setOpenable(true);
}

void Station::flood(int reports)
{
    const Bytes report = panel_.idleReport();
    // Ends when nobody takes them: commands are not obeyed meanwhile, signals neither.
    for (int i = 0; i < reports && device_.inject(report); ++i) { }
}

} // namespace sim
