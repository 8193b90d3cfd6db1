// What sysfs says about the device nodes that hidapi's hidraw version opens.
#pragma once

#include "report/bytes.h"

#include <filesystem>
#include <utility>

namespace ctl {

// The report descriptor and the ids of a node "/dev/hidrawN", empty or 0 if they cannot be read.
// `classes` is another directory in tests.
[[nodiscard]] report::Bytes hidrawDescriptor(
    const std::string& path, const std::filesystem::path& classes = "/sys/class/hidraw");
[[nodiscard]] std::pair<uint16_t, uint16_t> hidrawIds(
    const std::string& path, const std::filesystem::path& classes = "/sys/class/hidraw");

} // namespace ctl
