#include "tools/ctl/convert/convert.h"

#include "tools/ctl/cli/output.h"
#include "tools/ctl/cli/stop_signals.h"
#include "tools/ctl/convert/capture_file.h"
#include "tools/text/printable.h"

#include <algorithm>

namespace ctl {
namespace {

constexpr size_t kReportsPerProgress = 16'384;
constexpr const char* kStopped = "stopped by a signal; no capture was written";

struct Options {
    std::string recording;
    std::string capture;
};

report::Recording readRecording(const std::string& file)
{
    report::RecordingResult result = report::readRecordingFile(file);
    if (const auto* const error = std::get_if<report::DescriptorError>(&result))
        throw Failure(error->unreadable ? kNoAccess : kWrongUse, text::printable(error->text));
    return std::get<report::Recording>(std::move(result));
}

void refuseStandardOutput(const Options& options)
{
    if (options.capture == "-")
        throw Failure(
            kWrongUse, "-: convert writes files; for standard output use --pcap /dev/stdout");
}

void refuseSameFile(const Options& options)
{
    std::error_code ignored; // the capture usually does not exist
    if (std::filesystem::equivalent(options.recording, options.capture, ignored))
        throw Failure(kWrongUse,
            text::printable(options.capture)
                + ": the capture would replace the recording; give it another name");
}

// Readers expect packets in the order of time, but each device may have a clock of its own.
void sortByTime(report::Recording& recording)
{
    std::stable_sort(recording.reports.begin(), recording.reports.end(),
        [](const report::RecordedReport& one, const report::RecordedReport& other) {
            return one.time < other.time;
        });
}

void writeDescriptors(CaptureFile& capture, const report::Recording& recording)
{
    const auto begin
        = recording.reports.empty() ? std::chrono::microseconds{} : recording.reports.front().time;
    for (size_t i = 0; i < recording.devices.size(); ++i) {
        for (const UsbTransfer& transfer : descriptorTransfers(recording.devices[i], i, begin))
            capture.write(transfer);
        if (recording.devices[i].descriptor.empty())
            Output::err().line("kelprobectl: device " + std::to_string(i)
                + " has no R: line; without its descriptor no reader can decode its reports");
    }
}

void writeReports(
    CaptureFile& capture, const report::Recording& recording, const StopSignals& signals)
{
    const size_t count = recording.reports.size();
    for (size_t i = 0; i < count; ++i) {
        if (signals.stopped())
            throw Failure(kNoAccess, kStopped);
        if (i > 0 && i % kReportsPerProgress == 0)
            Output::err().progress("writing: " + std::to_string(100 * i / count) + " %");
        capture.write(reportTransfer(recording.reports[i]));
    }
    Output::err().progress("");
}

void writeCapture(const Options& options, const StopSignals& signals)
{
    report::Recording recording = readRecording(options.recording);
    refuseSameFile(options);
    sortByTime(recording);
    OutputFile file(options.capture);
    CaptureFile capture(file);
    writeDescriptors(capture, recording);
    writeReports(capture, recording, signals);
    capture.finish();
    file.finish();
}

int convert(const Options& options)
{
    refuseStandardOutput(options);
    const StopSignals signals; // no part of the file may stay
    signals.interruptCalls();
    try {
        writeCapture(options, signals);
    } catch (const Failure&) {
        if (signals.stopped()) // a call failed because of the signal
            throw Failure(kNoAccess, kStopped);
        throw;
    }
    return kFine;
}

} // namespace

void addConvertCommand(Command program, Run& run)
{
    Command command = program.addCommand("convert", "Convert a recording to a USB capture");
    const auto options = std::make_shared<Options>();
    command.addOption("FILE", options->recording, "Recording of monitor, trace or hid-recorder")
        .required();
    command
        .addOption(
            "--pcap", options->capture, "Write a capture that Wireshark and tshark decode as HID")
        .required()
        .placeholder("OUT");
    command.footer("Example:\n"
                   "  kelprobectl convert headset.hid --pcap headset.pcap\n"
                   "  tshark -r headset.pcap -V");
    command.action(run, [options] { return convert(*options); });
}

} // namespace ctl
