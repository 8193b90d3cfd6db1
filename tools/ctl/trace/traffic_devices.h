// The devices that programs use.
#pragma once

#include "tools/ctl/traffic/call.h"
#include "tools/ctl/traffic/report_text.h"

#include <list>
#include <map>
#include <memory>
#include <utility>

namespace ctl {

// A HID interface. It stays the same if it is closed and opened again, also by another program.
class TrafficDevice {
public:
    TrafficDevice(size_t number, const Call& open);

    [[nodiscard]] bool isOf(const Call& open) const;

    // A new one forgets the reports until now. `names` must outlive the object.
    void setDescriptor(report::Bytes descriptor, const report::UsageNames& names);
    [[nodiscard]] const report::Bytes& descriptor() const { return descriptor_; }

    // The words of a report that was transferred by the call; none if the descriptor is unknown.
    // Remembers the report, unless the call failed.
    [[nodiscard]] Words words(const Call& call);

    const size_t number; // from 1, in the order in which devices are first opened
    const uint16_t vendorId;
    const uint16_t productId;
    const std::string path;

private:
    report::Bytes descriptor_;
    report::Layout layout_;
    std::optional<report::ReportWords> words_;
};

class TrafficDevices {
public:
    // `names` must outlive the object.
    explicit TrafficDevices(const report::UsageNames& names);

    // The device of a call, null if it is unknown. To be called for each call in their order.
    [[nodiscard]] TrafficDevice* take(const Call& call);

private:
    using Handle = std::pair<int32_t, uint32_t>; // opener and its number of the device

    TrafficDevice& opened(const Call& call);

    const report::UsageNames& names_;
    std::list<TrafficDevice> devices_;
    std::map<Handle, TrafficDevice*> handles_;
};

} // namespace ctl
