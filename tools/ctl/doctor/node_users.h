// The programs that have a device node open.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ctl {

// "NAME (PID)", printable, without this process. Processes of other users are only seen by root.
// Reads all of /proc, which takes some milliseconds.
[[nodiscard]] std::vector<std::string> usersOfNode(const std::filesystem::path& node);

} // namespace ctl
