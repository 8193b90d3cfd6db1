// The processes that a bench has started.
#pragma once

#include <chrono>
#include <filesystem>

namespace sim {

// The environment variable that names the control socket to the program and its children.
inline constexpr const char* kSocketVariable = "KELPROBE_SIM";

// Ends each process of this user that was started with this control socket in its environment,
// except the calling process and its ancestors: with SIGTERM and, if it has not ended after
// `grace`, with SIGKILL; without grace with SIGKILL at once. Returns when they have ended. A
// process that was started without the variable is not found.
void endProcessesOf(const std::filesystem::path& socket, std::chrono::milliseconds grace);

} // namespace sim
