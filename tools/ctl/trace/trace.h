// What becomes of the calls of a traced program: lines, JSON, a recording.
#pragma once

#include "tools/ctl/cli/output_file.h"
#include "tools/ctl/trace/trace_recorder.h"

#include <functional>

namespace ctl {

class Trace {
public:
    struct Options {
        std::string output; // file instead of standard error, if not empty
        std::string record; // file for a recording, if not empty
        bool json = false;
    };

    // The time of the trace begins. Throws Failure if a file cannot be created.
    explicit Trace(const Options& options);

    // The process that is not named in the lines.
    void setProgram(pid_t process) { program_ = process; }

    // To be called for each call in their order. If a file cannot be written, says so and drops it.
    void add(const Call& call);

    [[nodiscard]] bool empty() const { return empty_; }

    // Completes the files. Returns false if one of them could not be written.
    [[nodiscard]] bool finish();

private:
    void write(const TracedCall& traced);
    void print(const std::string& line);
    void finishRecording();
    // Runs `action`; if it throws Failure, prints why, drops the files and remembers it.
    void guard(const std::function<void()>& action);

    const Options options_;
    const std::chrono::microseconds start_;
    const report::UsageNames names_;
    TrafficDevices devices_;
    std::optional<OutputFile> output_;
    std::optional<TraceRecorder> recorder_;
    pid_t program_ = 0;
    bool empty_ = true;
    bool failed_ = false;
};

} // namespace ctl
