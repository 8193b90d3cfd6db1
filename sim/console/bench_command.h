// The commands of kelprobe-sim that another kelprobe-sim, which runs a program, executes.
#pragma once

#include "sim/console/run.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace sim {

// Removes the number of a device, "2:", from the words before the command, and returns it. Empty if
// there is none. The command may be in the same word, as in "2: press mute".
[[nodiscard]] std::string takeDeviceNumber(std::vector<std::string>& words);

// Adds each command of the bench, and the option --socket. `device`, "2:" or empty, is put before
// the command that is sent. `app` and `run` must outlive the commands.
void addBenchCommands(CLI::App& app, const std::string& device, Run& run);

} // namespace sim
