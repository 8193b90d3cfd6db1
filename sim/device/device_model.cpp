#include "sim/device/device_model.h"

#include "report/layout.h"
#include "sim/device/usb_descriptors.h"

#include <algorithm>
#include <cassert>
#include <set>
#include <utility>

namespace sim {
namespace {

using Reply = DeviceModel::ControlReply;
using Setup = DeviceModel::SetupPacket;

enum Request : uint8_t { kGetReport = 1, kGetDescriptor = 6, kSetReport = 9, kSetIdle = 10 };
enum RequestType : uint8_t {
    kFromDevice = 0x80,
    kFromInterface = 0x81,
    kClassFromInterface = 0xa1,
    kClassToInterface = 0x21
};
constexpr uint8_t kInputReport = 1;
constexpr uint8_t kOutputReport = 2;
constexpr uint8_t kFeatureReport = 3;

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

std::vector<bool> reportIds(const UsbDeviceInfo& info)
{
    std::vector<bool> has;
    for (const InterfaceInfo& interface : info.interfaces)
        has.push_back(report::readLayout(interface.reportDescriptor).usesReportIds);
    return has;
}

[[maybe_unused]] bool hasUniqueNumbers(const UsbDeviceInfo& info)
{
    std::set<uint8_t> numbers;
    return std::ranges::all_of(info.interfaces,
        [&](const InterfaceInfo& interface) { return numbers.insert(interface.number).second; });
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
    , panel(info.controls().reportDescriptor, info.behaviour.hookSwitch)
    , controls_(info.controls())
    , hasReportIds_(reportIds(info))
{
    assert(hasUniqueNumbers(info));
}

Reply DeviceModel::control(const Setup& setup, std::span<const uint8_t> out)
{
    if (setup.requestType == kClassToInterface && setup.request == kSetReport)
        return setReport(setup, out);
    if (setup.requestType == kClassToInterface && setup.request == kSetIdle)
        return {};
    if (setup.requestType == kClassFromInterface && setup.request == kGetReport)
        return getReport(setup);
    const bool get = setup.request == kGetDescriptor;
    if (get && setup.requestType == kFromDevice)
        return getDescriptor(setup);
    if (get && setup.requestType == kFromInterface)
        return getReportDescriptor(setup);
    return stall();
}

bool DeviceModel::fails(Fault& fault)
{
    const bool failed = fault.consume();
    if (failed)
        addEvent({.kind = DeviceEvent::Kind::kRequestFailed});
    return failed;
}

Reply DeviceModel::getDescriptor(const Setup& setup)
{
    switch (setup.value >> 8) {
    case Descriptor::kDevice:
        return send(deviceDescriptor(info), setup.length);
    case Descriptor::kConfiguration:
        return send(configurationDescriptor(info), setup.length);
    case Descriptor::kString:
        if (fails(faults.stallStrings))
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
    const InterfaceInfo* const interface = findInterface(lowByte(setup.index));
    if (!interface || !interface->isHid())
        return stall();
    if (setup.value == Descriptor::kHid << 8)
        return send(hidDescriptor(*interface), setup.length);
    if (setup.value != ClassDescriptor::kReport << 8)
        return stall();
    ++counters.reportDescriptorReads;
    if (fails(faults.stallReportDescriptor))
        return stall();
    const bool cut = fails(faults.shortenReportDescriptor);
    return send(interface->reportDescriptor,
        cut ? std::min<size_t>(setup.length, faults.shortLength) : setup.length);
}

Reply DeviceModel::setReport(const Setup& setup, std::span<const uint8_t> out)
{
    const InterfaceInfo* const interface = findInterface(lowByte(setup.index));
    if (!interface || !interface->isHid())
        return stall();
    const int kind = setup.value >> 8;
    const bool received = kind == kOutputReport ? receive(*interface, out)
        : kind == kFeatureReport ? receiveFeature(*interface, lowByte(setup.value), out)
                                 : false;
    return received ? Reply{.transferred = out.size()} : stall();
}

// Of input and feature reports; a request for an output report stalls.
Reply DeviceModel::getReport(const Setup& setup)
{
    using report::ReportKind;
    const InterfaceInfo* const interface = findInterface(lowByte(setup.index));
    const int type = setup.value >> 8;
    if (!interface || !interface->isHid() || (type != kInputReport && type != kFeatureReport))
        return stall();
    const uint8_t id = lowByte(setup.value);
    const ReportKind kind = type == kInputReport ? ReportKind::kInput : ReportKind::kFeature;
    const report::Layout layout = report::readLayout(interface->reportDescriptor);
    const auto size = layout.wireSize({kind, id});
    if (!size)
        return stall();
    if (kind == ReportKind::kInput && interface == &controls_)
        return send(panel.inputReport(id), setup.length);
    Bytes report(*size);
    if (layout.usesReportIds)
        report.front() = id;
    const std::lock_guard lock(featuresMutex_);
    const auto set = features_.find({interface->number, id});
    return send(kind == ReportKind::kFeature && set != features_.end() ? set->second : report,
        setup.length);
}

Bytes DeviceModel::withId(const InterfaceInfo& interface, std::span<const uint8_t> wire) const
{
    Bytes report(wire.begin(), wire.end());
    if (!hasReportIds_[static_cast<size_t>(&interface - info.interfaces.data())])
        report.insert(report.begin(), 0);
    return report;
}

// False if the interface has no such report.
bool DeviceModel::receiveFeature(
    const InterfaceInfo& interface, uint8_t id, std::span<const uint8_t> wire)
{
    const report::Layout layout = report::readLayout(interface.reportDescriptor);
    if (!layout.reportBits.contains({report::ReportKind::kFeature, id}))
        return false;
    {
        const std::lock_guard lock(featuresMutex_);
        features_[{interface.number, id}] = Bytes(wire.begin(), wire.end());
    }
    addEvent({.kind = DeviceEvent::Kind::kFeature,
        .interface = interface.number,
        .report = withId(interface, wire)});
    return true;
}

bool DeviceModel::receive(const InterfaceInfo& interface, std::span<const uint8_t> wire)
{
    Bytes report = withId(interface, wire);
    if (faults.failWrite.consume()) {
        addEvent({.kind = DeviceEvent::Kind::kOutputRefused,
            .interface = interface.number,
            .report = std::move(report)});
        return false;
    }
    const bool toControls = &interface == &controls_;
    addEvent({.kind = DeviceEvent::Kind::kOutput,
        .interface = interface.number,
        .report = report,
        .lamps = toControls ? panel.applyOutput(report) : std::vector<LampChange>{}});
    if (toControls)
        outputs.add(std::move(report));
    return true;
}

const InterfaceInfo* DeviceModel::findInterface(unsigned number) const
{
    const auto found = std::ranges::find(info.interfaces, number, &InterfaceInfo::number);
    return found == info.interfaces.end() ? nullptr : &*found;
}

void DeviceModel::addEvent(DeviceEvent event)
{
    event.hook = panel.hook();
    const std::lock_guard lock(eventsMutex_);
    events_.push_back(std::move(event));
}

bool DeviceModel::hasEvents()
{
    const std::lock_guard lock(eventsMutex_);
    return !events_.empty();
}

std::vector<DeviceEvent> DeviceModel::takeEvents()
{
    const std::lock_guard lock(eventsMutex_);
    return std::exchange(events_, {});
}

void DeviceModel::waitForEvents()
{
    {
        const std::lock_guard lock(callbackMutex_);
        callForEvents();
    }
    deliverEvents(); // those added by a thread that did not wait
}

void DeviceModel::deliverEvents()
{
    while (hasEvents()) {
        const std::unique_lock lock(callbackMutex_, std::try_to_lock);
        if (!lock || calling_)
            return;
        callForEvents();
    }
}

void DeviceModel::callForEvents()
{
    if (calling_)
        return; // the caller of this callback goes on with the events
    calling_ = true;
    for (auto events = takeEvents(); !events.empty(); events = takeEvents()) {
        for (const DeviceEvent& event : events) {
            const EventCallback callback = callback_; // may replace itself while it runs
            if (callback)
                callback(event);
            if (reaction_)
                reaction_(event);
        }
    }
    calling_ = false;
}

void DeviceModel::setReaction(EventCallback reaction)
{
    {
        const std::lock_guard lock(callbackMutex_);
        reaction_ = std::move(reaction);
    }
    deliverEvents(); // those of a thread that could not lock
}

void DeviceModel::setEventCallback(EventCallback callback)
{
    {
        const std::lock_guard lock(callbackMutex_);
        callback_ = std::move(callback);
    }
    deliverEvents(); // those of a thread that could not lock
}

} // namespace sim
