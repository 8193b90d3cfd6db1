#include "tools/ctl/traffic/send_command.h"

#include "tools/ctl/cli/stop_signals.h"
#include "tools/ctl/traffic/send_target.h"
#include "tools/ctl/usb/device_words.h"
#include "tools/text/printable.h"

namespace ctl {
namespace {

using report::ReportKind;

struct SendOptions {
    std::vector<std::string> hex;
    bool feature = false;
    bool json = false;
    std::optional<std::string> device;
};

// Also takes the form of C, "0x03, 0x08".
report::Bytes parseHex(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += word + ' ';
    std::string digits;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool beginsWord = digits.empty() || digits.back() == ' ';
        if (beginsWord && text.compare(i, 2, "0x") == 0)
            ++i;
        else
            digits += text[i] == ',' ? ' ' : text[i];
    }
    const auto bytes = report::fromHex(digits);
    if (!bytes || bytes->empty())
        throw Failure(kWrongUse,
            '"' + text::printable(text.substr(0, text.size() - 1))
                + "\" is not hexadecimal; write pairs of digits, as in 03 08 00");
    return *bytes;
}

std::string idsOf(const report::Layout& layout, ReportKind kind)
{
    std::string text;
    for (const auto& [key, bits] : layout.reportBits) {
        if (key.kind == kind)
            text += (text.empty() ? "" : ", ") + report::toHex({&key.id, 1});
    }
    return text;
}

std::string whyNoReport(const SendTarget& target, ReportKind kind, uint8_t id)
{
    const std::string ids = idsOf(target.layout, kind);
    const ReportKind other
        = kind == ReportKind::kFeature ? ReportKind::kOutput : ReportKind::kFeature;
    if (target.layout.reportBits.contains({other, id}))
        return std::string("has it as ") + report::kindName(other) + " report; "
            + (kind == ReportKind::kFeature ? "leave out --feature" : "add --feature");
    if (ids.empty())
        return std::string("has no ") + report::kindName(kind) + " reports";
    return target.layout.usesReportIds ? "has " + ids : "uses no ids; begin with 00";
}

// Throws Failure if the device has no such report or the report is longer than that.
void check(const SendTarget& target, ReportKind kind, const report::Bytes& report)
{
    const uint8_t id = report.front();
    const std::string name
        = std::string(report::kindName(kind)) + " report " + report::toHex({&id, 1});
    const auto known = target.layout.reportBits.find({kind, id});
    if (known == target.layout.reportBits.end())
        throw Failure(kWrongUse,
            idsText(target.entry) + " has no " + name + "; it " + whyNoReport(target, kind, id));
    const size_t size = (known->second + 7) / 8;
    if (report.size() - 1 > size)
        throw Failure(kWrongUse,
            name + " of " + idsText(target.entry) + " is too long: it has at most "
                + std::to_string(size) + " bytes after the id, not "
                + std::to_string(report.size() - 1));
}

int send(const SendOptions& options)
{
    const report::Bytes report = parseHex(options.hex);
    const ReportKind kind = options.feature ? ReportKind::kFeature : ReportKind::kOutput;
    const StopSignals stop; // a signal must not leave the device without its kernel driver
    const SendTarget target(options.device);
    check(target, kind, report);
    HidConnection connection(target.entry);
    target.print(kind, report, options.json);
    if (stop.stopped())
        throw Failure(kFellShort, "interrupted; the report was not sent");
    if (options.feature)
        connection.sendFeature(report);
    else
        connection.write(report);
    return kFine;
}

} // namespace

void addSendCommand(Command program, Run& run)
{
    Command command = program.addCommand("send", "Send one report to a device");
    const auto options = std::make_shared<SendOptions>();
    command.addOption("HEX", options->hex, "The report, its id first (00 if there are no ids)")
        .required();
    command.addFlag("--feature", options->feature, "A feature report instead of an output report");
    command.addFlag("--json", options->json, "Print a line of JSON");
    command.addOption("--device", options->device, "The device: vvvv:pppp, path or number");
    command.footer("Prints what the report means before it is sent. A report that the device's\n"
                   "descriptor does not have, or that is too long, is not sent.\n"
                   "Exit status: 0 fine, 1 the device does not take the report or a signal came\n"
                   "first, 2 wrong use, 3 no device, or it cannot be opened or has gone.\n"
                   "Example: kelprobectl send 03 08 00");
    command.action(run, [options] { return send(*options); });
}

} // namespace ctl
