#include "tools/ctl/traffic/recording_file.h"

#include <algorithm>
#include <cassert>

namespace ctl {
namespace {

bool isSame(const report::RecordedDevice& one, const report::RecordedDevice& other)
{
    return one.vendorId == other.vendorId && one.productId == other.productId
        && one.physicalPath == other.physicalPath && one.descriptor == other.descriptor;
}

} // namespace

RecordingFile::RecordingFile(const std::filesystem::path& path)
    : file_(path)
{
}

size_t RecordingFile::addDevice(const report::RecordedDevice& device)
{
    const auto found = std::find_if(devices_.begin(), devices_.end(),
        [&](const report::RecordedDevice& other) { return isSame(device, other); });
    const auto index = static_cast<size_t>(found - devices_.begin());
    if (found == devices_.end()) {
        devices_.push_back(device);
        select(index);
        file_.write(report::recordingHeader(device));
    }
    return index;
}

void RecordingFile::add(report::RecordedReport report)
{
    assert(report.device < devices_.size());
    last_ = std::max(last_, report.time);
    report.time = last_;
    select(report.device);
    file_.write(report::recordingLine(report));
}

bool RecordingFile::finish()
{
    if (devices_.empty())
        return false;
    file_.finish();
    return true;
}

void RecordingFile::select(size_t device)
{
    if (device != selected_)
        file_.write(report::recordingDevice(device));
    selected_ = device;
}

} // namespace ctl
