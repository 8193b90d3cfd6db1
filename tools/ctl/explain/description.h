// Everything that `kelprobectl describe` says about one report descriptor.
#pragma once

#include "report/annotation.h"
#include "report/format/descriptor_file.h"
#include "tools/ctl/explain/control_map.h"
#include "tools/ctl/usb/device_list.h"

namespace ctl {

// A descriptor and where it is from.
struct DescriptorOrigin {
    report::DescriptorBytes bytes;
    std::string text;                  // "FILE" or "1209:0001 Maker Product"; printable
    std::optional<DeviceEntry> device; // if it is from a device
    std::string label;                 // which descriptor of the file; printable, may be empty
    uint16_t vendorId = 0;             // 0, 0 if unknown
    uint16_t productId = 0;
};

// From the device or file that the user names, or from the only telephony device. `number` is that
// of the descriptor in a file, from 1. Throws Failure.
[[nodiscard]] DescriptorOrigin findDescriptor(
    const std::optional<std::string>& choice, std::optional<size_t> number);

// The descriptor that the stack uses for the device: one that is built in, or that of `origin`,
// which must outlive the result.
[[nodiscard]] std::span<const uint8_t> stackDescriptor(const DescriptorOrigin& origin);

// What Kelprobe would do otherwise with the real device. Sentences.
[[nodiscard]] std::vector<std::string> remarksOn(const DescriptorOrigin& origin);

// The parts refer to each other, so that it can be neither copied nor moved.
struct Description {
    explicit Description(DescriptorOrigin from);
    Description(const Description&) = delete;
    Description& operator=(const Description&) = delete;

    const DescriptorOrigin origin;
    const report::UsageNames names;
    const std::vector<report::AnnotatedItem> items;
    const report::Layout layout;
    const ControlMap controls;
    const std::vector<std::string> meeting;
    const std::vector<std::string> remarks; // remarksOn(origin)
};

} // namespace ctl
