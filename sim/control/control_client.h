// A client of the control socket: kelprobe-sim COMMAND.
#pragma once

#include <string>

namespace sim {

// The bench cannot be reached, or has ended.
constexpr int kNoBench = 3;

// Sends a command to the bench whose socket this is, the one that the environment names if `socket`
// is empty. Prints the answer to standard output as it comes, and errors to standard error. Returns
// the status of the command, 1 if standard output cannot be written, or kNoBench. Blocks until the
// command has ended.
[[nodiscard]] int sendCommand(const std::string& socket, const std::string& line);

} // namespace sim
