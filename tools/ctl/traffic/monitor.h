// Shows the input reports of a device, on standard output and in a recording.
#pragma once

#include "tools/ctl/traffic/recording_file.h"
#include "tools/ctl/traffic/report_reader.h"
#include "tools/ctl/traffic/report_text.h"

#include <optional>

namespace ctl {

class Monitor {
public:
    struct Options {
        std::string record; // file for a recording, if not empty
        bool json = false;
    };

    // The time of the lines begins. Throws Failure if the file cannot be created.
    explicit Monitor(const Options& options);

    enum class End { kStopped, kGone };

    // Opens the device and shows its reports until a signal arrives or the device has gone. Throws
    // Failure if the device cannot be opened or an output cannot be written, DeviceGone if it has
    // gone before it was opened.
    End show(const DeviceEntry& entry, const StopSignals& stop);

    // Completes the recording, and says on standard error how many reports came.
    void finish();

private:
    struct Reports; // of one device

    [[nodiscard]] End end(const DeviceEntry& entry, bool gone) const;
    void showDevice(const DeviceEntry& entry);
    void print(Reports& device, const ReportReader::Report& report);

    const Options options_;
    const report::UsageNames names_;
    const std::chrono::steady_clock::time_point start_;
    std::optional<RecordingFile> recording_;
    size_t count_ = 0;
};

} // namespace ctl
