// What the kernel shows of USB devices below /sys. Each directory is one of HidInterface.
//
// Plain system calls: `list` takes as long as the C++ library's streams and directories would.
#pragma once

#include "report/bytes.h"

#include <string>
#include <vector>

namespace ctl {

// The report descriptor of an interface. Empty unless the kernel's HID driver has the interface.
// The driver may have corrected it.
[[nodiscard]] report::Bytes sysfsDescriptor(const std::string& interface);

// The names of the interface's hidraw nodes: "hidraw0".
[[nodiscard]] std::vector<std::string> hidrawNames(const std::string& interface);

// The driver that has the interface: "usbhid", kProgramsDriver, or empty if there is none.
[[nodiscard]] std::string sysfsDriver(const std::string& interface);

// Stands for a program that has claimed the interface.
constexpr const char* kProgramsDriver = "usbfs";

// An attribute of a device, "manufacturer", "product" or "serial", without the last line end. Empty
// if there is none.
[[nodiscard]] std::string sysfsAttribute(const std::string& device, const std::string& name);

} // namespace ctl
