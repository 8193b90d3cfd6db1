// Writes traced calls into a recording.
#pragma once

#include "tools/ctl/trace/trace_lines.h"
#include "tools/ctl/traffic/recording_file.h"

namespace ctl {

class TraceRecorder {
public:
    // Throws Failure if the file cannot be created.
    explicit TraceRecorder(const std::filesystem::path& path);

    // Records input reports that were read, and output and feature reports that were sent or could
    // not be sent. The format has no place for other calls. To be called for each call in their
    // order. Throws Failure.
    void add(const TracedCall& traced);

    // As RecordingFile::finish().
    [[nodiscard]] bool finish() { return file_.finish(); }

private:
    void addDevice(const TrafficDevice& device);
    void addReport(const TracedCall& traced, report::RecordedReport::Direction direction);

    RecordingFile file_;
    std::map<const TrafficDevice*, size_t> indices_; // in the recording
};

} // namespace ctl
