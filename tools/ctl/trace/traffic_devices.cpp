#include "tools/ctl/trace/traffic_devices.h"

#include "tools/ctl/trace/hidraw.h"

#include <algorithm>
#include <tuple>

namespace ctl {

TrafficDevice::TrafficDevice(size_t deviceNumber, const Call& open)
    : number(deviceNumber)
    , vendorId(open.vendorId)
    , productId(open.productId)
    , path(open.path)
{
}

bool TrafficDevice::isOf(const Call& open) const
{
    return path == open.path && vendorId == open.vendorId && productId == open.productId;
}

void TrafficDevice::setDescriptor(report::Bytes descriptor, const report::UsageNames& names)
{
    descriptor_ = std::move(descriptor);
    layout_ = report::readLayout(descriptor_);
    if (descriptor_.empty())
        words_.reset();
    else
        words_.emplace(layout_, names);
}

Words TrafficDevice::words(const Call& call)
{
    using report::ReportKind;
    if (!words_)
        return {};
    const auto view = [&] {
        switch (call.kind) {
        case HID_CALL_READ:
            return wireReport(layout_, ReportKind::kInput, call.data);
        case HID_CALL_GET_INPUT:
            return sentReport(ReportKind::kInput, call.data);
        case HID_CALL_WRITE:
            return sentReport(ReportKind::kOutput, call.data);
        default:
            return sentReport(ReportKind::kFeature, call.data);
        }
    }();
    if (call.result < 0)
        return report::ReportWords(*words_).describe(view);
    return words_->describe(view);
}

TrafficDevices::TrafficDevices(const report::UsageNames& names)
    : names_(names)
{
}

TrafficDevice* TrafficDevices::take(const Call& call)
{
    const Handle handle(call.opener, call.device);
    if (call.kind == HID_CALL_OPEN && call.result >= 0)
        handles_[handle] = &opened(call);
    const auto found = handles_.find(handle);
    if (call.device == 0 || found == handles_.end())
        return nullptr;
    if (call.kind == HID_CALL_DESCRIPTOR)
        found->second->setDescriptor(
            call.data.empty() ? hidrawDescriptor(found->second->path) : call.data, names_);
    return found->second;
}

TrafficDevice& TrafficDevices::opened(const Call& call)
{
    Call open = call;
    if (open.vendorId == 0 && open.productId == 0) // hidapi's hidraw version does not say
        std::tie(open.vendorId, open.productId) = hidrawIds(open.path);
    const auto found = std::find_if(devices_.begin(), devices_.end(),
        [&](const TrafficDevice& device) { return device.isOf(open); });
    return found != devices_.end() ? *found : devices_.emplace_back(devices_.size() + 1, open);
}

} // namespace ctl
