#include "tools/ctl/usb/list_command.h"

#include "tools/ctl/cli/output.h"
#include "tools/ctl/cli/stop_signals.h"
#include "tools/ctl/usb/device_list.h"
#include "tools/ctl/usb/device_watch.h"
#include "tools/ctl/usb/device_words.h"
#include "tools/text/printable.h"

#include <json/json.h>

#include <algorithm>
#include <memory>

namespace ctl {
namespace {

struct Options {
    bool watch = false;
    bool telephony = false;
    bool json = false;
};

using Entries = std::vector<DeviceEntry>;

// A device whose descriptor is unknown may be a telephony device.
bool isWanted(const DeviceEntry& entry, const Options& options)
{
    return !options.telephony || entry.telephony || entry.descriptor.empty();
}

report::UsageNames loadNames()
{
    return report::UsageNames::load(report::UsageNames::Part::kPages);
}

Json::Value toJson(const Entries& entries, const report::UsageNames& names)
{
    Json::Value list(Json::arrayValue);
    for (const DeviceEntry& entry : entries)
        list.append(deviceJson(entry, names));
    return list;
}

// What the columns do not say.
void printRemarks(const Entries& entries)
{
    Output& out = Output::out();
    for (const DeviceEntry& entry : entries) {
        const std::string number = std::to_string(entry.number) + ": ";
        if (!entry.accessText.empty())
            out.line(number + entry.accessText);
        else if (entry.descriptor.empty())
            out.line(number
                + "no driver has it, so its usage pages are not known; kelprobectl describe "
                + std::to_string(entry.number) + " reads them");
        if (!entry.firstOfItsIds)
            out.line(number + "an earlier line has the same ids; the window opens that one");
    }
}

void printTable(const Entries& entries, const report::UsageNames& names)
{
    Output& out = Output::out();
    const std::vector<std::string> lines = deviceTable(entries, names);
    out.line(out.styled(Style::kStrong, lines.front()));
    std::for_each(lines.begin() + 1, lines.end(), [&](const std::string& line) { out.line(line); });
    out.line("");
    printRemarks(entries);
    out.line("A command takes a device by number, ids or path: kelprobectl describe "
        + std::to_string(entries.front().number));
}

int listOnce(const Options& options)
{
    Entries entries = listDevices();
    std::erase_if(entries, [&](const DeviceEntry& entry) { return !isWanted(entry, options); });
    const auto names = entries.empty() ? report::UsageNames() : loadNames();
    if (options.json)
        Output::out().json(toJson(entries, names));
    if (entries.empty())
        throw Failure(kNoAccess,
            options.telephony ? "no telephony device is present; kelprobectl list shows the others"
                              : "no HID device is present; plug one in");
    if (!options.json)
        printTable(entries, names);
    return kFine;
}

const char* nameOf(DeviceWatch::Change change)
{
    switch (change) {
    case DeviceWatch::Change::kPresent:
        return "present";
    case DeviceWatch::Change::kAdded:
        return "added";
    case DeviceWatch::Change::kRemoved:
        return "removed";
    }
    return "";
}

std::string lineOf(
    DeviceWatch::Change change, const DeviceEntry& entry, const report::UsageNames& names)
{
    constexpr size_t wordWidth = 9;
    std::string line = nameOf(change);
    line.resize(wordWidth, ' ');
    line += idsText(entry) + "  " + text::printable(entry.path) + "  " + nameText(entry);
    if (change == DeviceWatch::Change::kRemoved)
        return line;
    line += "  [" + pagesText(entry, names) + "]  ";
    return line + (entry.accessText.empty() ? accessWord(entry.access) : entry.accessText);
}

int watch(const Options& options)
{
    const StopSignals stop;
    const report::UsageNames names = loadNames();
    if (!options.json)
        Output::err().line("Waiting for devices to come and go. Ctrl-C ends.");
    const auto print = [&](DeviceWatch::Change change, const DeviceEntry& entry) {
        if (!isWanted(entry, options))
            return;
        if (options.json) {
            Json::Value event;
            event["event"] = nameOf(change);
            event["device"] = deviceJson(entry, names);
            Output::out().jsonLine(event);
        } else {
            Output::out().line(lineOf(change, entry, names));
        }
    };
    DeviceWatch(stop, print).run();
    return kFine;
}

} // namespace

void addListCommand(Command program, Run& run)
{
    Command command = program.addCommand("list", "List the HID devices and who can open them");
    const auto options = std::make_shared<Options>();
    command.addFlag("--watch", options->watch, "Follow plug and unplug until Ctrl-C");
    command.addFlag("--telephony", options->telephony, "Leave out devices without telephony");
    command.addFlag("--json", options->json, "Print JSON; with --watch one line for each event");
    command.footer("The devices are not disturbed; kelprobectl doctor really tries to use them.\n"
                   "Exit status: 0 there are devices, 3 there are none or USB cannot be used.\n"
                   "Example: kelprobectl list --telephony");
    command.action(
        run, [options] { return options->watch ? watch(*options) : listOnce(*options); });
}

} // namespace ctl
