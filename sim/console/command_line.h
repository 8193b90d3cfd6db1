// The command line of kelprobe-sim.
#pragma once

namespace sim {

// Runs kelprobe-sim and returns its exit status. Prints errors.
[[nodiscard]] int runCommandLine(int argc, char** argv);

} // namespace sim
