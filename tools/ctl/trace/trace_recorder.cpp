#include "tools/ctl/trace/trace_recorder.h"

#include "tools/ctl/traffic/failure_words.h"
#include "tools/ctl/usb/sysfs.h"
#include "tools/text/printable.h"

#include <utility>

namespace ctl {

using Direction = report::RecordedReport::Direction;

namespace {

// "Maker Product" as the kernel shows them, or else the ids. libusb's paths, "1-2:1.0", contain the
// name of the device's directory.
std::string nameOf(const TrafficDevice& device)
{
    const size_t colon = device.path.find(':');
    std::string name;
    if (colon != device.path.npos && device.path.find('/') == device.path.npos) {
        const std::string directory = "/sys/bus/usb/devices/" + device.path.substr(0, colon);
        for (const char* const attribute : {"manufacturer", "product"})
            name += (name.empty() ? "" : " ") + sysfsAttribute(directory, attribute);
    }
    return name.empty() ? idsText(device.vendorId, device.productId) : text::printable(name);
}

} // namespace

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

void TraceRecorder::addDevice(const TrafficDevice& device)
{
    report::RecordedDevice recorded;
    recorded.name = nameOf(device);
    recorded.physicalPath = device.path;
    recorded.vendorId = device.vendorId;
    recorded.productId = device.productId;
    recorded.descriptor = device.descriptor();
    indices_[&device] = file_.addDevice(recorded);
}

void TraceRecorder::addReport(const TracedCall& traced, Direction direction)
{
    const auto device = indices_.find(traced.device);
    if (device == indices_.end() || traced.call.data.empty())
        return;
    report::RecordedReport recorded;
    recorded.device = device->second;
    recorded.time = traced.time;
    recorded.direction = direction;
    recorded.bytes = traced.call.data;
    if (traced.call.result < 0)
        recorded.failure = failureOf(traced.call).text;
    file_.add(std::move(recorded));
}

} // namespace ctl
