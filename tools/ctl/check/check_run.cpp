#include "tools/ctl/check/check_run.h"

#include "hid/model/BuiltInDescriptor.h"
#include "report/format/recording.h"
#include "tools/ctl/check/command_operator.h"
#include "tools/ctl/check/junit.h"
#include "tools/ctl/check/person.h"
#include "tools/ctl/check/recorded_operator.h"
#include "tools/ctl/check/tap.h"
#include "tools/ctl/check/tests/conformance_tests.h"
#include "tools/ctl/cli/failure.h"
#include "tools/ctl/cli/output.h"
#include "tools/ctl/traffic/report_text.h"
#include "tools/ctl/usb/device_words.h"
#include "tools/text/printable.h"

#include <algorithm>
#include <unistd.h>

namespace ctl {
namespace {

using Verdict = Outcome::Verdict;

// The stack does not ask this one device for its descriptor.
report::Bytes descriptorForStack(const DeviceEntry& device)
{
    const bool isBuiltIn
        = device.vendorId == KX::kBuiltInVendorId && device.productId == KX::kBuiltInProductId;
    return isBuiltIn ? report::Bytes(KX::kBuiltInDescriptor.begin(), KX::kBuiltInDescriptor.end())
                     : device.descriptor;
}

report::Recording recordingFrom(const std::string& path)
{
    auto result = report::readRecordingFile(path);
    if (const auto* const error = std::get_if<report::DescriptorError>(&result))
        throw Failure(kWrongUse, error->text);
    return std::get<report::Recording>(std::move(result));
}

bool isTerminal()
{
    return isatty(STDIN_FILENO) == 1;
}

size_t count(const std::vector<TestResult>& results, Verdict verdict)
{
    return static_cast<size_t>(std::count_if(results.begin(), results.end(),
        [verdict](const TestResult& result) { return result.outcome.verdict == verdict; }));
}

// Each reason once, with the tests that it is about.
void printAll(const std::vector<TestResult>& results, Verdict verdict, const char* title)
{
    std::vector<std::pair<std::string, std::string>> reasons; // and names
    for (const TestResult& result : results) {
        if (result.outcome.verdict != verdict)
            continue;
        const auto known = std::find_if(reasons.begin(), reasons.end(),
            [&](const auto& reason) { return reason.first == result.outcome.reason; });
        auto& entry
            = known == reasons.end() ? reasons.emplace_back(result.outcome.reason, "") : *known;
        entry.second += "\n    - " + result.name;
    }
    if (!reasons.empty())
        Output::err().line(Output::err().styled(Style::kStrong, title));
    for (const auto& [reason, names] : reasons)
        Output::err().line("  " + text::printable(reason) + names);
}

} // namespace

CheckRun::CheckRun(const CheckOptions& options)
    : times_(options.times)
{
    if (options.recording)
        useRecording(*options.recording);
    else
        chooseDevice(options);
    chooseOperators(options);
    if (options.junit)
        junit_.emplace(*options.junit);
}

void CheckRun::chooseDevice(const CheckOptions& options)
{
    const DeviceEntry device = ctl::chooseDevice(options.device);
    requireUsable(device);
    subject_ = {.name = idsText(device) + ' ' + nameText(device),
        .descriptor = descriptorForStack(device),
        .open = [device](Journal& journal) { return std::make_unique<Session>(journal, device); }};
}

void CheckRun::useRecording(const std::string& path)
{
    const report::Recording recording = recordingFrom(path);
    const report::RecordedDevice& device = recording.devices.front();
    if (device.descriptor.empty())
        throw Failure(kWrongUse, path + ": no report descriptor (R: line)");
    Reports inputs;
    for (const report::RecordedReport& report : recording.reports)
        if (report.device == 0 && report.direction == report::RecordedReport::Direction::kInput)
            inputs.push_back(report.bytes);
    recordedFacts_.emplace(device.descriptor);
    recorded_ = std::make_unique<RecordedDevice>(recordedFacts_->controls());
    auto presses = std::make_unique<RecordedOperator>(*recorded_, *recordedFacts_, inputs);
    if (presses->isEmpty())
        Output::err().line("kelprobectl: " + text::printable(path)
            + " has no press of a button; record a meeting in which every button is pressed");
    presses_ = std::move(presses);
    subject_
        = {.name = idsText(device.vendorId, device.productId) + ' ' + text::printable(device.name),
            .descriptor = device.descriptor,
            .open = [this](Journal& journal) { return recorded_->open(journal); },
            .isRecording = true,
            .recorded = std::move(inputs)};
}

void CheckRun::chooseOperators(const CheckOptions& options)
{
    const bool needsPerson = (!presses_ && !options.pressCommand) || options.replug;
    if (needsPerson && isTerminal())
        lines_.emplace();
    const auto person = [this]() -> std::unique_ptr<Operator> {
        if (!lines_)
            return std::make_unique<Nobody>();
        using std::chrono::seconds;
        return std::make_unique<Person>(*lines_, std::chrono::duration_cast<seconds>(times_.press));
    };
    const auto command = [this](const std::string& text) {
        return std::make_unique<CommandOperator>(text, times_.press);
    };
    if (options.pressCommand)
        presses_ = command(*options.pressCommand);
    else if (!presses_)
        presses_ = person();
    if (options.replugCommand)
        plugs_ = command(*options.replugCommand);
    else if (options.replug)
        plugs_ = person();
}

int CheckRun::run()
{
    return finish(runAll());
}

// Returns why the run was not completed; empty if it was.
std::string CheckRun::runAll()
{
    Tester tester(loop_, subject_, {*presses_, plugs_.get()}, times_); // opens the device
    try {
        Output::out().line(tapHeader(conformanceTests().size()));
        Output::out().line("# device: " + subject_.name);
        runTests(tester);
    } catch (const EventLoop::Stopped&) {
        return "stopped by a signal";
    } catch (const Tester::Gone&) {
        return "the device has gone";
    } catch (const Failure& failure) {
        // The device cannot be opened again, a command not run, or standard output not be written.
        return failure.what();
    }
    return {};
}

void CheckRun::runTests(Tester& tester)
{
    using Clock = std::chrono::steady_clock;
    using std::chrono::milliseconds;
    for (const ConformanceTest& test : conformanceTests()) {
        const auto begin = Clock::now();
        Output::err().progress(test.name);
        TestResult result{test.name, test.run(tester)};
        Output::err().progress("");
        result.duration = std::chrono::duration_cast<milliseconds>(Clock::now() - begin);
        if (result.outcome.verdict == Verdict::kFailed)
            tester.distrust();
        results_.push_back(std::move(result));
        Output::out().line(tapResult(results_.size(), results_.back()));
    }
}

int CheckRun::finish(const std::string& bailOut)
{
    if (junit_) { // first: standard output may be closed
        junit_->write(junitDocument(subject_.name, results_, bailOut));
        junit_->finish();
    }
    printSummary();
    if (!bailOut.empty()) {
        Output::out().line(tapBailOut(bailOut));
        throw Failure(kNoAccess, "the check was not completed: " + bailOut);
    }
    return count(results_, Verdict::kFailed) == 0 ? kFine : kFellShort;
}

void CheckRun::printSummary() const
{
    printAll(results_, Verdict::kFailed, "Failed:");
    printAll(results_, Verdict::kSkipped, "Not tested:");
    Output::err().line(subject_.name + ": " + std::to_string(count(results_, Verdict::kPassed))
        + " passed, " + std::to_string(count(results_, Verdict::kFailed)) + " failed, "
        + std::to_string(count(results_, Verdict::kSkipped)) + " skipped");
}

} // namespace ctl
