#include "tools/ctl/convert/convert.h"

#include "tools/ctl/cli/output.h"
#include "tools/ctl/cli/stop_signals.h"
#include "tools/ctl/convert/capture_file.h"
#include "tools/text/printable.h"

namespace ctl {
namespace {

constexpr size_t kReportsPerProgress = 16'384;

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

void refuseSameFile(const Options& options)
{
    std::error_code ignored; // the capture usually does not exist
    if (std::filesystem::equivalent(options.recording, options.capture, ignored))
        throw Failure(kWrongUse,
            text::printable(options.capture)
                + ": the capture would replace the recording; give it another name");
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
            throw Failure(kNoAccess, "stopped by a signal; no capture was written");
        if (i > 0 && i % kReportsPerProgress == 0)
            Output::err().progress("writing: " + std::to_string(100 * i / count) + " %");
        capture.write(reportTransfer(recording.reports[i]));
    }
    Output::err().progress("");
}

int convert(const Options& options)
{
    const report::Recording recording = readRecording(options.recording);
    refuseSameFile(options);
    const StopSignals signals; // no part of the file may stay
    OutputFile file(options.capture);
    CaptureFile capture(file);
    writeDescriptors(capture, recording);
    writeReports(capture, recording, signals);
    capture.finish();
    file.finish();
    return kFine;
}

} // namespace

void addConvertCommand(CLI::App& app, Run& run)
{
    CLI::App* const command = app.add_subcommand("convert", "Convert a recording to a USB capture");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->recording, "Recording of monitor, trace or hid-recorder")
        ->required();
    command
        ->add_option(
            "--pcap", options->capture, "Write a capture that Wireshark and tshark decode as HID")
        ->required()
        ->type_name("OUT");
    command->footer("Example:\n"
                    "  kelprobectl convert headset.hid --pcap headset.pcap\n"
                    "  tshark -r headset.pcap -V");
    command->callback([options, &run] { run = [options] { return convert(*options); }; });
}

} // namespace ctl
