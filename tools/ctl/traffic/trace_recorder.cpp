#include "tools/ctl/traffic/trace_recorder.h"

#include "tools/ctl/traffic/failure_words.h"

#include <algorithm>

namespace ctl {

using Direction = report::RecordedReport::Direction;

TraceRecorder::TraceRecorder(const std::filesystem::path& path)
    : file_(path)
{
}

void TraceRecorder::add(const TracedCall& traced)
{
    if (!traced.device)
        return;
    switch (traced.call.kind) {
    case HID_CALL_DESCRIPTOR: // after each open
        addDevice(*traced.device);
        return;
    case HID_CALL_READ:
        if (traced.call.result > 0)
            addReport(traced, Direction::kInput);
        return;
    case HID_CALL_WRITE:
        addReport(traced, Direction::kOutput);
        return;
    case HID_CALL_SEND_FEATURE:
        addReport(traced, Direction::kFeature);
        return;
    default:
        return;
    }
}

bool TraceRecorder::finish()
{
    if (indices_.empty())
        return false;
    file_.finish();
    return true;
}

// A device that is opened again is still the same one.
void TraceRecorder::addDevice(const TrafficDevice& device)
{
    const auto [place, isNew] = indices_.try_emplace(&device, indices_.size());
    if (!isNew)
        return;
    select(place->second);
    report::RecordedDevice recorded;
    recorded.name = idsText(device.vendorId, device.productId);
    recorded.physicalPath = device.path;
    recorded.vendorId = device.vendorId;
    recorded.productId = device.productId;
    recorded.descriptor = device.descriptor();
    file_.write(report::recordingHeader(recorded));
}

void TraceRecorder::addReport(const TracedCall& traced, Direction direction)
{
    const auto device = indices_.find(traced.device);
    if (device == indices_.end() || traced.call.data.empty())
        return;
    select(device->second);
    // A read call of one thread may end before an earlier write call of another.
    last_ = std::max(last_, traced.time);
    report::RecordedReport recorded;
    recorded.time = last_;
    recorded.direction = direction;
    recorded.bytes = traced.call.data;
    if (traced.call.result < 0)
        recorded.failure = failureOf(traced.call).text;
    file_.write(report::recordingLine(recorded));
}

void TraceRecorder::select(size_t index)
{
    if (index != selected_)
        file_.write(report::recordingDevice(index));
    selected_ = index;
}

} // namespace ctl
