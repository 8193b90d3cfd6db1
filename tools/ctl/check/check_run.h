// One run of all conformance tests: prints the results and writes the JUnit file.
#pragma once

#include "tools/ctl/check/recorded_device.h"
#include "tools/ctl/check/tester.h"
#include "tools/ctl/cli/output_file.h"
#include "tools/ctl/meeting/input_lines.h"

#include <memory>
#include <optional>
#include <string>

namespace ctl {

struct CheckOptions {
    std::optional<std::string> device;
    std::optional<std::string> recording;
    std::optional<std::string> pressCommand;
    std::optional<std::string> replugCommand;
    bool replug = false;
    std::optional<std::string> junit; // path
    CheckTimes times;
};

class CheckRun {
public:
    // Chooses the device or reads the recording. Throws Failure.
    explicit CheckRun(const CheckOptions& options);

    // Returns the exit status. Throws Failure.
    [[nodiscard]] int run();

private:
    void chooseDevice(const CheckOptions& options);
    void useRecording(const std::string& path);
    void chooseOperators(const CheckOptions& options);
    [[nodiscard]] std::string runAll();
    void runTests(Tester& tester);
    [[nodiscard]] int finish(const std::string& bailOut);
    void printSummary() const;

    const CheckTimes times_;
    std::optional<OutputFile> junit_;
    EventLoop loop_;
    Subject subject_;
    std::optional<DeviceFacts> recordedFacts_; // these two only with a recording
    std::unique_ptr<RecordedDevice> recorded_;
    std::optional<InputLines> lines_; // only with a person
    std::unique_ptr<Operator> presses_;
    std::unique_ptr<Operator> plugs_;
    std::vector<TestResult> results_;
};

} // namespace ctl
