#include "sim/device/device_model.h"

#include "report/layout.h"
#include "sim/device/usb_descriptors.h"

#include <algorithm>
#include <utility>

namespace sim {
namespace {

using Reply = DeviceModel::ControlReply;
using Setup = DeviceModel::SetupPacket;

enum Request : uint8_t { kGetDescriptor = 6, kSetReport = 9, kSetIdle = 10 };
enum RequestType : uint8_t { kFromDevice = 0x80, kFromInterface = 0x81, kClassToInterface = 0x21 };
enum DescriptorType : uint8_t { kDevice = 1, kConfiguration = 2, kString = 3, kHid = 0x21 };
constexpr uint8_t kOutputReport = 2;

Reply stall()
{
    return {.stalled = true};
}

Reply send(Bytes data, size_t limit)
{
    data.resize(std::min(data.size(), limit));
    const size_t size = data.size();
    return {.data = std::move(data), .transferred = size};
}

} // namespace

Setup Setup::from(std::span<const uint8_t> bytes)
{
    const auto word
        = [&](size_t at) { return static_cast<uint16_t>(bytes[at] | bytes[at + 1] << 8); };
    return {bytes[0], bytes[1], word(2), word(4), word(6)};
}

DeviceModel::DeviceModel(UsbDeviceInfo deviceInfo)
    : info(std::move(deviceInfo))
    , hasReportIds(report::readLayout(info.reportDescriptor).usesReportIds)
{
}

Reply DeviceModel::control(const Setup& setup, std::span<const uint8_t> out)
{
    if (setup.requestType == kClassToInterface && setup.request == kSetReport)
        return setReport(setup, out);
    if (setup.requestType == kClassToInterface && setup.request == kSetIdle)
        return {};
    const bool get = setup.request == kGetDescriptor;
    if (get && setup.requestType == kFromDevice)
        return getDescriptor(setup);
    if (get && setup.requestType == kFromInterface)
        return getReportDescriptor(setup);
    return stall();
}

Reply DeviceModel::getDescriptor(const Setup& setup)
{
    switch (setup.value >> 8) {
    case kDevice:
        return send(deviceDescriptor(info), setup.length);
    case kConfiguration:
        return send(configurationDescriptor(info), setup.length);
    case kString:
        if (faults.stallStrings.consume())
            return stall();
        if (auto text = stringDescriptor(info, lowByte(setup.value)))
            return send(std::move(*text), setup.length);
        return stall();
    default:
        return stall();
    }
}

Reply DeviceModel::getReportDescriptor(const Setup& setup)
{
    if (setup.value == kHid << 8)
        return send(hidDescriptor(info), setup.length);
    if (setup.value != ClassDescriptor::kReport << 8)
        return stall();
    ++counters.reportDescriptorReads;
    if (faults.stallReportDescriptor.consume())
        return stall();
    const bool cut = faults.shortenReportDescriptor.consume();
    return send(info.reportDescriptor,
        cut ? std::min<size_t>(setup.length, faults.shortLength) : setup.length);
}

Reply DeviceModel::setReport(const Setup& setup, std::span<const uint8_t> out)
{
    if (setup.value >> 8 != kOutputReport || !receive(out))
        return stall();
    return {.transferred = out.size()};
}

bool DeviceModel::receive(std::span<const uint8_t> wire)
{
    Bytes report(wire.begin(), wire.end());
    if (!hasReportIds)
        report.insert(report.begin(), 0);
    if (faults.failWrite.consume()) {
        addEvent({DeviceEvent::Kind::kOutputRefused, std::move(report)});
        return false;
    }
    addEvent({DeviceEvent::Kind::kOutput, report});
    outputs.add(std::move(report));
    return true;
}

void DeviceModel::addEvent(DeviceEvent event)
{
    const std::lock_guard lock(eventsMutex_);
    events_.push_back(std::move(event));
}

void DeviceModel::notify()
{
    const std::lock_guard callbackLock(callbackMutex_);
    std::vector<DeviceEvent> events;
    {
        const std::lock_guard lock(eventsMutex_);
        events.swap(events_);
    }
    const EventCallback callback = callback_; // may replace itself while it runs
    for (const DeviceEvent& event : events) {
        if (callback)
            callback(event);
    }
}

void DeviceModel::setEventCallback(EventCallback callback)
{
    const std::lock_guard lock(callbackMutex_);
    callback_ = std::move(callback);
}

} // namespace sim
