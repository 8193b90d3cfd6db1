// The commands of kelprobe-sim that make simulated devices, or show them.
#pragma once

#include "sim/console/run.h"

#include <optional>
#include <string>
#include <vector>

namespace sim {

// Adds run, replay, list and profile. `program` is what came after "--" on the command line. All
// outlive the commands.
void addDeviceCommands(
    command_line::Command app, const std::optional<std::vector<std::string>>& program, Run& run);

} // namespace sim
