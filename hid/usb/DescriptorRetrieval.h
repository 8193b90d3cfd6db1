// Reads a HID interface's report descriptor through libusb, with a handle of its own.
#pragma once

#include "hid/model/Bytes.h"

#include <optional>
#include <span>

namespace KX {

// The report descriptor of the HID interface that hidapi names `path`; hidapi must not have it
// open. Both of hidapi's forms are known: "1-2.3:1.0" (bus-ports:configuration.interface) and
// "0001:0002:00" (bus:address:interface in hexadecimal).
//
// A kernel driver is detached meanwhile and attached again. Blocks for at most four time-outs of
// 5 s. Failures are told on standard output, in the words of a USB descriptor listing:
// - no such interface, no permission, a driver that stays, or no report descriptor announced:
//   empty, nothing printed;
// - the interface cannot be claimed: as many zeros as the descriptor was announced to have;
// - four short answers: what the last one brought, padded with zeros;
// - more than 4,096 bytes announced: zeros, as the kernel does not let libusb ask for so many.
[[nodiscard]] Bytes RetrieveReportDescriptor(const char* path);

// The length that an interface's class-specific bytes announce for its report descriptor: that of
// their first entry of type Report; nothing when there is none. Pure; takes any bytes.
[[nodiscard]] std::optional<uint16_t> AnnouncedDescriptorLength(std::span<const uint8_t> extra);

} // namespace KX
