// Writes traced calls into a recording.
#pragma once

#include "report/recording.h"
#include "tools/ctl/cli/output_file.h"
#include "tools/ctl/traffic/trace_lines.h"

namespace ctl {

class TraceRecorder {
public:
    // Throws Failure if the file cannot be created.
    explicit TraceRecorder(const std::filesystem::path& path);

    // Input reports that were read, and output and feature reports that were sent, also in vain.
    // Other calls are not recorded. To be called for each call in their order. Throws Failure.
    void add(const TracedCall& traced);

    // Completes the file. Returns false, and there is no file, if no device was opened.
    [[nodiscard]] bool finish();

private:
    void addDevice(const TrafficDevice& device);
    void addReport(const TracedCall& traced, report::RecordedReport::Direction direction);
    void select(size_t index);

    OutputFile file_;
    std::map<const TrafficDevice*, size_t> indices_;
    size_t selected_ = 0; // that the next lines are about
    std::chrono::microseconds last_{};
};

} // namespace ctl
