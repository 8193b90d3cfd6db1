#include "tools/ctl/doctor/doctor_command.h"

#include "tools/ctl/cli/output.h"
#include "tools/ctl/doctor/diagnosis.h"
#include "tools/ctl/doctor/udev_rule.h"
#include "tools/ctl/usb/device_words.h"
#include "tools/text/printable.h"

#include <json/json.h>

#include <memory>
#include <optional>
#include <sstream>

namespace ctl {
namespace {

struct Options {
    std::optional<std::string> device; // none: all
    bool json = false;
    bool udevRule = false;
};

constexpr const char* kIndentation = "           "; // of the text of a finding

const char* levelWord(Finding::Level level)
{
    switch (level) {
    case Finding::Level::kFine:
        return "ok";
    case Finding::Level::kNote:
        return "note";
    case Finding::Level::kProblem:
        return "problem";
    }
    return "";
}

Style levelStyle(Finding::Level level)
{
    switch (level) {
    case Finding::Level::kFine:
        return Style::kGood;
    case Finding::Level::kNote:
        return Style::kStrong;
    case Finding::Level::kProblem:
        return Style::kBad;
    }
    return Style::kPlain;
}

void print(const Findings& findings)
{
    constexpr size_t wordWidth = 7;
    Output& out = Output::out();
    for (const Finding& finding : findings) {
        const std::string word = levelWord(finding.level);
        out.line("  " + out.styled(levelStyle(finding.level), word)
            + std::string(wordWidth - word.size() + 2, ' ') + finding.text);
        std::istringstream remedy(finding.remedy);
        for (std::string line; std::getline(remedy, line);)
            out.line(kIndentation + line);
    }
}

// What can be used, or that nothing can.
std::string verdict(const Diagnosis& diagnosis)
{
    std::string usable;
    for (const DeviceDiagnosis& device : diagnosis.devices) {
        if (device.usable())
            usable += (usable.empty() ? "" : ", ") + nameText(device.device);
    }
    return "Kelprobe can use " + (usable.empty() ? "no device" : usable) + '.';
}

void print(const Diagnosis& diagnosis)
{
    Output& out = Output::out();
    out.line(out.styled(Style::kStrong, "This machine"));
    print(diagnosis.system);
    for (const DeviceDiagnosis& device : diagnosis.devices) {
        const DeviceEntry& entry = device.device;
        out.line("");
        out.line(out.styled(Style::kStrong, idsText(entry) + ' ' + nameText(entry)) + " ("
            + text::printable(entry.path) + ')');
        print(device.findings);
    }
    out.line("");
    out.line(out.styled(diagnosis.usable() ? Style::kGood : Style::kBad, verdict(diagnosis)));
}

Json::Value toJson(const Findings& findings)
{
    Json::Value list(Json::arrayValue);
    for (const Finding& finding : findings) {
        Json::Value value;
        value["id"] = finding.id;
        value["level"] = levelWord(finding.level);
        value["text"] = finding.text;
        value["remedy"] = finding.remedy.empty() ? Json::Value() : Json::Value(finding.remedy);
        list.append(std::move(value));
    }
    return list;
}

Json::Value toJson(const Diagnosis& diagnosis)
{
    const auto names = report::UsageNames::load();
    Json::Value value;
    value["usable"] = diagnosis.usable();
    value["system"] = toJson(diagnosis.system);
    value["devices"] = Json::Value(Json::arrayValue);
    for (const DeviceDiagnosis& device : diagnosis.devices) {
        Json::Value entry;
        entry["device"] = deviceJson(device.device, names);
        entry["usable"] = device.usable();
        entry["findings"] = toJson(device.findings);
        value["devices"].append(std::move(entry));
    }
    return value;
}

int doctor(const Options& options)
{
    if (options.udevRule) {
        std::string rule(udevRule());
        rule.pop_back(); // the line end
        Output::out().line(rule);
        return kFine;
    }
    const Diagnosis diagnosis = diagnose(options.device);
    if (options.json)
        Output::out().json(toJson(diagnosis));
    else
        print(diagnosis);
    return diagnosis.usable() ? kFine : kNoAccess;
}

} // namespace

void addDoctorCommand(Command program, Run& run)
{
    Command command = program.addCommand("doctor", "Find what stands between you and the devices");
    const auto options = std::make_shared<Options>();
    const Option device = command.addOption("DEVICE", options->device,
        "Ids (vvvv:pppp), path or number of list; default: all telephony devices");
    const Option json = command.addFlag("--json", options->json, "Print JSON");
    command.addFlag("--udev-rule", options->udevRule, "Only print Kelprobe's udev rule")
        .excludes(device)
        .excludes(json);
    command.footer(
        "Opens each telephony device and gives it back, which interrupts its volume keys\n"
        "for a moment.\n"
        "Exit status: 0 Kelprobe can use a telephony device, or DEVICE; 3 it cannot.\n"
        "Example: kelprobectl doctor 1209:0001");
    command.action(run, [options] { return doctor(*options); });
}

} // namespace ctl
