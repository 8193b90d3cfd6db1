// Reads the report descriptor of a HID interface through libusb, with a separate handle.
#pragma once

#include "hid/model/Bytes.h"

#include <optional>
#include <span>

namespace KX {

// Returns the report descriptor of the HID interface that hidapi names `path`; see HidPath.h for
// the two forms of a path. hidapi must not have the interface open. A kernel driver is detached for
// the time of the call.
//
// Makes up to four attempts, each of which blocks for at most 5 s. Prints a line on standard output
// when the interface cannot be claimed, and when the last attempt received only a part. The result
// is:
// - empty, with nothing printed, when there is no such interface, permission is missing, the kernel
//   driver cannot be detached, or the interface announces no report descriptor;
// - as many zeros as the interface announces bytes, when it cannot be claimed;
// - after four short or failed attempts: the bytes that the device sent. Each attempt overwrites
//   the beginning of the buffer, so the tail may be from an earlier, longer response. Bytes that no
//   attempt received are 0;
// - all zeros when more than 4,096 bytes are announced: libusb rejects such requests.
//
// Throws std::bad_alloc, with nothing left open.
[[nodiscard]] Bytes RetrieveReportDescriptor(const char* path);

// The length in bytes that an interface's class-specific descriptor announces for its report
// descriptor: that of its first entry of type Report. Nothing when there is none. Pure; takes any
// bytes.
[[nodiscard]] std::optional<uint16_t> AnnouncedDescriptorLength(std::span<const uint8_t> extra);

} // namespace KX
