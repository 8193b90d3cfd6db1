#include "tools/ctl/traffic/monitor_command.h"

#include "tools/ctl/traffic/device_wait.h"
#include "tools/ctl/traffic/monitor.h"
#include "tools/ctl/usb/device_words.h"

namespace ctl {
namespace {

struct MonitorOptions {
    std::optional<std::string> device;
    bool wait = false;
    Monitor::Options monitor;
};

// A number changes with every plug, so the device is looked for by its ids.
std::string choiceOf(const std::optional<std::string>& choice, const DeviceEntry& entry)
{
    return choice == entry.path ? entry.path : idsText(entry);
}

int watchOnce(const MonitorOptions& options, const StopSignals& stop)
{
    const DeviceEntry entry = chooseDevice(options.device);
    Monitor monitor(options.monitor);
    const Monitor::End end = monitor.show(entry, stop);
    monitor.finish();
    if (end == Monitor::End::kGone)
        throw Failure(kNoAccess, idsText(entry) + " has gone; --wait waits until it is back");
    return kFine;
}

// Says on standard error that the device has gone, if that is why it ends.
void showOnce(Monitor& monitor, const DeviceEntry& entry, const StopSignals& stop)
{
    try {
        if (monitor.show(entry, stop) == Monitor::End::kStopped)
            return;
    } catch (const DeviceGone&) { // before it was opened
    }
    Output::err().line(idsText(entry) + " has gone.");
}

int watchAgain(const MonitorOptions& options, const StopSignals& stop)
{
    Monitor monitor(options.monitor);
    std::optional<std::string> choice = options.device;
    while (const auto entry = waitForDevice(choice, stop)) {
        showOnce(monitor, *entry, stop);
        choice = choiceOf(options.device, *entry);
    }
    monitor.finish();
    return kFine;
}

int monitor(const MonitorOptions& options)
{
    const StopSignals stop;
    return options.wait ? watchAgain(options, stop) : watchOnce(options, stop);
}

} // namespace

void addMonitorCommand(Command program, Run& run)
{
    Command command
        = program.addCommand("monitor", "Print the input reports of a device as they arrive");
    const auto options = std::make_shared<MonitorOptions>();
    command.addOption("DEVICE", options->device, "The device: vvvv:pppp, path or number");
    command.addFlag(
        "--wait", options->wait, "Wait for the device, also when it is unplugged, until Ctrl-C");
    command
        .addOption("--record", options->monitor.record,
            "Also write the reports to this file as a recording")
        .placeholder("FILE");
    command.addFlag("--json", options->monitor.json, "Print one line of JSON for each report");
    command.footer(
        "Prints the time in seconds, the bytes and their meaning. A * (or bold text) marks what\n"
        "changed since the report before. No other program has the device meanwhile.\n"
        "Exit status: 0 ended by Ctrl-C, 2 wrong use, 3 no device, or it cannot be opened or was\n"
        "unplugged (without --wait).\n"
        "Example: kelprobectl monitor --record hook.txt");
    command.action(run, [options] { return monitor(*options); });
}

} // namespace ctl
