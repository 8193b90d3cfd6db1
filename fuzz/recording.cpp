// A recording, read, written and read again. Input: its text.
#include "report/format/recording.h"
#include "fuzz/error_place.h"

namespace {

std::string Written(const report::Recording& recording)
{
    std::string text;
    for (size_t i = 0; i < recording.devices.size(); ++i)
        text += report::recordingDevice(i) + report::recordingHeader(recording.devices[i]);
    for (const report::RecordedReport& report : recording.reports)
        text += report::recordingDevice(report.device) + report::recordingLine(report);
    return text;
}

void RequireSame(const report::RecordedDevice& a, const report::RecordedDevice& b)
{
    Require(a.name == b.name && a.physicalPath == b.physicalPath && a.bus == b.bus);
    Require(a.vendorId == b.vendorId && a.productId == b.productId);
    Require(a.descriptor == b.descriptor);
}

void RequireSame(const report::RecordedReport& a, const report::RecordedReport& b)
{
    Require(a.device == b.device && a.time == b.time && a.direction == b.direction);
    Require(a.bytes == b.bytes && a.failure == b.failure);
}

template <typename T>
void RequireSame(const std::vector<T>& a, const std::vector<T>& b)
{
    Require(a.size() == b.size());
    for (size_t i = 0; i < a.size(); ++i)
        RequireSame(a[i], b[i]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    const auto result = report::parseRecording(text, "f");
    if (const auto* const error = std::get_if<report::DescriptorError>(&result)) {
        RequirePlace(error->text, text);
        return 0;
    }
    const auto& recording = std::get<report::Recording>(result);
    Require(!recording.devices.empty());
    const auto again = report::parseRecording(Written(recording), "f");
    Require(std::holds_alternative<report::Recording>(again));
    RequireSame(std::get<report::Recording>(again).devices, recording.devices);
    RequireSame(std::get<report::Recording>(again).reports, recording.reports);
    return 0;
}
