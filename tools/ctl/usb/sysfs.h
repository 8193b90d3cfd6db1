// What the kernel shows of USB devices below /sys. Each directory is one of HidInterface.
#pragma once

#include "report/bytes.h"

#include <filesystem>
#include <string>
#include <vector>

namespace ctl {

// The report descriptor of an interface. Empty unless the kernel's HID driver has the interface.
// The driver may have corrected it.
[[nodiscard]] report::Bytes sysfsDescriptor(const std::filesystem::path& interface);

// The names of the interface's hidraw nodes: "hidraw0".
[[nodiscard]] std::vector<std::string> hidrawNames(const std::filesystem::path& interface);

// An attribute of a device, "manufacturer", "product" or "serial", without the last line end. Empty
// if there is none.
[[nodiscard]] std::string sysfsAttribute(
    const std::filesystem::path& device, const std::string& name);

} // namespace ctl
