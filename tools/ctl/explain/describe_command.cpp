#include "tools/ctl/explain/describe_command.h"

#include "hid/model/DescriptorDump.h"
#include "hid/model/Root.h"
#include "tools/ctl/cli/output.h"
#include "tools/ctl/explain/description_json.h"
#include "tools/ctl/explain/description_text.h"
#include "tools/ctl/explain/phrases.h"

#include <json/json.h>

#include <cstdio>
#include <memory>

namespace ctl {
namespace {

struct Options {
    std::optional<std::string> choice;
    std::optional<size_t> descriptor;
    bool items = false;
    bool layout = false;
    bool controls = false;
    bool tree = false;
    bool json = false;

    [[nodiscard]] bool all() const { return !items && !layout && !controls; }
};

void printTitle(const Description& description)
{
    const DescriptorOrigin& origin = description.origin;
    Output::out().line(origin.text + (origin.label.empty() ? "" : ", " + origin.label) + ": "
        + counted(origin.bytes.size(), "byte"));
    for (const std::string& remark : description.remarks)
        Output::out().line(remark);
    if (description.names.empty())
        Output::err().line("kelprobectl: usb.ids is missing, so usages have no names; install the "
                           "package usb.ids");
}

// The controls come last, so that they are what a terminal shows at the end.
void print(const Description& description, const Options& options)
{
    printTitle(description);
    if (options.all() || options.items)
        printItems(description);
    if (options.all() || options.layout)
        printReports(description);
    if (options.all() || options.layout || options.items)
        printProblems(description);
    if (options.all() || options.controls) {
        printControls(description);
        printMeeting(description);
    }
}

void printTree(const DescriptorOrigin& origin)
{
    for (const std::string& remark : remarksOn(origin))
        Output::err().line("kelprobectl: " + remark);
    const std::span<const uint8_t> descriptor = stackDescriptor(origin);
    KX::Root root;
    root.Parse(descriptor);
    KX::DumpDescriptor(root, descriptor);
    if (std::ferror(stdout))
        throw Failure(kNoAccess, "standard output cannot be written");
}

// Reading a negative number as an unsigned one would give a large number. Returns what is wrong.
std::string findNegative(const std::string& number)
{
    return number.starts_with('-') ? number + " is not a number from 1" : "";
}

int describe(const Options& options)
{
    if (options.tree + options.json + !options.all() > 1)
        throw Failure(kWrongUse,
            "--tree, --json and the options for sections exclude each other; choose one");
    DescriptorOrigin origin = findDescriptor(options.choice, options.descriptor);
    if (options.tree) {
        printTree(origin);
        return kFine;
    }
    const Description description(std::move(origin));
    if (options.json)
        Output::out().json(toJson(description));
    else
        print(description, options);
    return kFine;
}

} // namespace

void addDescribeCommand(Command program, Run& run)
{
    Command command = program.addCommand(
        "describe", "Explain a report descriptor and the controls that Kelprobe finds in it");
    const auto options = std::make_shared<Options>();
    command.addOption("DEVICE|FILE", options->choice,
        "A device as vvvv:pppp, path or number of the list, or a file; without it the only "
        "telephony device");
    command
        .addOption(
            "--descriptor", options->descriptor, "Which descriptor of a file with several, from 1")
        .check(findNegative);
    command.addFlag("--items", options->items, "Print the items only");
    command.addFlag("--layout", options->layout, "Print the layout of the reports only");
    command.addFlag("--controls", options->controls, "Print the controls only");
    command.addFlag("--tree", options->tree, "Print the tree of Kelprobe's stack instead");
    command.addFlag("--json", options->json, "Print JSON instead");
    command.footer("A file is binary as /sys/bus/hid/devices/*/report_descriptor, hexadecimal\n"
                   "text, a C array, output of usbhid-dump, or a recording. Write ./NAME for a\n"
                   "file whose name looks like a device.\n"
                   "Exit status: 0 also if controls are missing, 2 the file is no descriptor,\n"
                   "3 the device or file cannot be read.\n"
                   "Example: kelprobectl describe 046d:0944");
    command.action(run, [options] { return describe(*options); });
}

} // namespace ctl
