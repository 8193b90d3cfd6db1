#include "sim/console/device_commands.h"

#include "report/format/file_content.h"
#include "report/format/recording.h"
#include "sim/bench/command_words.h"
#include "sim/bench/device_json.h"
#include "sim/console/session.h"
#include "sim/profile/profile_text.h"
#include "sim/profile/profiles.h"
#include "sim/profile/recorded_devices.h"
#include "tools/text/printable.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>

namespace sim {
namespace {

using Program = std::optional<std::vector<std::string>>;

constexpr const char* kRunFooter
    = R"(FILE is a device profile, a report descriptor in any format that kelprobectl
describe reads, or a recording; PROFILE is one that kelprobe-sim list shows.
Write ./NAME for a file that is named like a profile. Without either it is the
speakerphone.

Standard output shows what the devices send and receive; both outputs of PROGRAM
go to standard error. Commands for the devices are read from standard input, a
line each; "help" lists them. The end of the input does not end PROGRAM. PROGRAM
and what it starts can give the same commands: kelprobe-sim press mute.

Example: kelprobe-sim run bug-report.hid -- kelprobe)";

constexpr const char* kReplayFooter
    = R"(The device's reports are sent at their times, from when PROGRAM reads from the
device. With --check they also wait for the reports of PROGRAM that come before
them in the recording, and PROGRAM's reports are compared with the recorded ones.
The first difference is printed and ends PROGRAM; the exit status is 1 then.

Example: kelprobe-sim replay meeting.hid --check -- kelprobe)";

// What is wrong with the text as a speed; empty if nothing is.
std::string speedMistake(const std::string& text)
{
    double speed = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, speed, std::chars_format::fixed);
    const bool isNumber = result.ec == std::errc() && result.ptr == end;
    return isNumber && speed >= 0.001 && speed <= 1000 ? ""
                                                       : "expected a number from 0.001 to 1000";
}

struct DeviceOptions {
    ProfileOptions profile;
    std::optional<std::string> ids;
    int interface = -1;

    void add(command_line::Command& command)
    {
        command.addOption("--ids", ids, "Vendor and product id of the device")
            .placeholder("VVVV:PPPP");
        command.addOption("--name", profile.product, "Product name of the device");
        command.addOption("--interface", interface, "Number of the interface with the controls")
            .range(0, 31)
            .placeholder("N");
        command.addFlag("--no-out-endpoint", profile.noOutEndpoint,
            "The host sends output reports by control transfers");
    }

    [[nodiscard]] ProfileOptions get() const
    {
        ProfileOptions options = profile;
        if (ids)
            options.ids = parseIds(*ids);
        if (interface >= 0)
            options.interfaceNumber = static_cast<uint8_t>(interface);
        return options;
    }

private:
    [[nodiscard]] static report::DeviceIds parseIds(const std::string& ids)
    {
        const bool hasColon = ids.size() == 9 && ids[4] == ':';
        const auto bytes
            = hasColon ? report::fromHex(ids.substr(0, 4) + ids.substr(5)) : std::nullopt;
        if (!bytes)
            throw WrongUse("--ids takes two numbers of four hexadecimal digits, such as 1209:0001");
        const auto number = [&bytes](size_t at) {
            return static_cast<uint16_t>((*bytes)[at] << 8 | (*bytes)[at + 1]);
        };
        return {number(0), number(2)};
    }
};

const std::vector<std::string>& requireProgram(const Program& program)
{
    if (!program || program->empty())
        throw WrongUse("expected -- and a program");
    return *program;
}

struct RunOptions {
    std::vector<std::string> files;
    DeviceOptions device;
    bool programTakesInput = false;
};

int runProgram(const RunOptions& options, const Program& program)
{
    SessionOptions session;
    session.program = requireProgram(program);
    session.programTakesInput = options.programTakesInput;
    const std::vector<std::string> standard = {kDefaultProfile};
    for (const std::string& file : options.files.empty() ? standard : options.files)
        for (Profile& profile : loadProfiles(file, options.device.get()))
            session.profiles.push_back(std::move(profile));
    return runSession(session);
}

void addInputOption(command_line::Command& command, bool& programTakesInput)
{
    command.addFlag("-i,--interactive", programTakesInput,
        "PROGRAM has standard input, and the terminal,\ninstead of commands");
}

void addRunCommand(command_line::Command app, const Program& program, Run& run)
{
    const auto options = std::make_shared<RunOptions>();
    command_line::Command command = app.addCommand("run", "Run a program with simulated devices");
    command.addOption("FILE", options->files, "Files and profiles, one or more devices each")
        .placeholder("");
    options->device.add(command);
    addInputOption(command, options->programTakesInput);
    command.footer(kRunFooter);
    command.action(run, [options, &program] { return runProgram(*options, program); });
}

struct ReplayCommandOptions {
    std::string file;
    size_t device = 1;
    ReplayOptions replay;
    std::string within;
    bool programTakesInput = false;
};

std::string readText(const std::string& file)
{
    try {
        return report::readFile(file, report::kMaxRecordingSize);
    } catch (const report::DescriptorError& error) {
        throw WrongUse(error.text);
    }
}

report::Recording parseRecording(const std::string& text, const std::string& file)
{
    auto result = report::parseRecording(text, file);
    if (const auto* const error = std::get_if<report::DescriptorError>(&result))
        throw WrongUse(error->text);
    return std::get<report::Recording>(std::move(result));
}

// The device with this number, from 1, as `run` makes it.
Profile recordedDevice(const report::Recording& recording, size_t number, const std::string& text,
    const std::string& file)
{
    const auto& devices = recording.devices;
    if (number > devices.size())
        throw WrongUse(file + ": the recording has no device " + std::to_string(number)
            + "; it has " + std::to_string(devices.size()));
    const auto device = devices.begin() + static_cast<std::ptrdiff_t>(number) - 1;
    if (device->descriptor.empty())
        throw WrongUse(file + ": the recording has no report descriptor (R: line) of the device");
    const auto index = std::count_if(devices.begin(), device,
        [](const report::RecordedDevice& other) { return !other.descriptor.empty(); });
    return deviceOfDescriptor(text, file, static_cast<size_t>(index));
}

int replay(const ReplayCommandOptions& options, const Program& program)
{
    SessionOptions session;
    session.program = requireProgram(program);
    session.programTakesInput = options.programTakesInput;
    const std::string text = readText(options.file);
    const report::Recording recording = parseRecording(text, options.file);
    session.profiles = {recordedDevice(recording, options.device, text, options.file)};
    session.replay.emplace();
    session.replay->options = options.replay;
    for (const report::RecordedReport& report : recording.reports)
        if (report.device == options.device - 1)
            session.replay->reports.push_back(report);
    if (!options.within.empty()) {
        const auto within = parseDuration(options.within);
        if (!within)
            throw WrongUse("--within takes a time such as 500ms or 2s");
        session.replay->options.patience = *within;
    }
    return runSession(session);
}

void addReplayCommand(command_line::Command app, const Program& program, Run& run)
{
    const auto options = std::make_shared<ReplayCommandOptions>();
    command_line::Command command
        = app.addCommand("replay", "Run a program with a device that was recorded");
    command.addOption("RECORDING", options->file, "As kelprobectl monitor --record writes it")
        .required()
        .placeholder("");
    command.addOption("--device", options->device, "Of several in the recording; default 1")
        .range(1, 65535)
        .placeholder("N");
    command.addOption("--speed", options->replay.speed, "2 is twice as fast; default 1")
        .check(speedMistake)
        .placeholder("N");
    command.addFlag(
        "--check", options->replay.check, "Compare what PROGRAM sends with the recording");
    command
        .addOption("--within", options->within,
            "With --check: how much later than recorded\n"
            "a report of PROGRAM may be; default 5s")
        .placeholder("T");
    addInputOption(command, options->programTakesInput);
    command.footer(kReplayFooter);
    command.action(run, [options, &program] { return replay(*options, program); });
}

int printProfiles()
{
    for (const Profile& profile : profiles())
        printf("%-16s %04x:%04x  %s\n", text::printable(profile.name).c_str(),
            unsigned{profile.info.vendorId}, unsigned{profile.info.productId},
            text::printable(profile.description).c_str());
    return EXIT_SUCCESS;
}

int printProfile(const std::string& file, size_t number, const ProfileOptions& options)
{
    const std::vector<Profile> found = loadProfiles(file, options);
    if (number > found.size())
        throw WrongUse(file + ": there is no device " + std::to_string(number) + "; there are "
            + std::to_string(found.size()));
    fputs(writeProfile(found[number - 1]).c_str(), stdout);
    return EXIT_SUCCESS;
}

void addProfileCommand(command_line::Command app, Run& run)
{
    struct Options {
        std::string file;
        size_t number = 1;
        DeviceOptions device;
    };
    const auto options = std::make_shared<Options>();
    command_line::Command command
        = app.addCommand("profile", "Print the device of a file as a device profile");
    command.addOption("FILE", options->file, "A descriptor file, a recording or a profile")
        .required()
        .placeholder("");
    command.addOption("--device", options->number, "Of several in the file; default 1")
        .range(1, 65535)
        .placeholder("N");
    options->device.add(command);
    command.footer("Example: kelprobe-sim profile bug-report.hid >bug-report.json");
    command.action(run,
        [options] { return printProfile(options->file, options->number, options->device.get()); });
}

} // namespace

void addDeviceCommands(command_line::Command app, const Program& program, Run& run)
{
    addRunCommand(app, program, run);
    addReplayCommand(app, program, run);
    app.addCommand("list", "List the built-in profiles").footer("").action(run, printProfiles);
    addProfileCommand(app, run);
}

} // namespace sim
