// A recording that is written as the reports arrive.
#pragma once

#include "report/format/recording.h"
#include "tools/ctl/cli/output_file.h"

namespace ctl {

class RecordingFile {
public:
    // All throw Failure if the file cannot be written.
    explicit RecordingFile(const std::filesystem::path& path);

    // Returns the index of the device, that of an equal one if there is one.
    size_t addDevice(const report::RecordedDevice& device);

    // `report.device` is an index of addDevice(). A time before that of an earlier report is
    // replaced by that one's; reports of several threads may come in another order.
    void add(report::RecordedReport report);

    // Completes the file. Returns false, and there is no file, if there is no device.
    [[nodiscard]] bool finish();

private:
    void select(size_t device);

    OutputFile file_;
    std::vector<report::RecordedDevice> devices_;
    size_t selected_ = 0; // that the next lines are about
    std::chrono::microseconds last_{};
};

} // namespace ctl
