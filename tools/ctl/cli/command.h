// How the commands of kelprobectl are declared.
#pragma once

#include "tools/command_line/command.h"
#include "tools/ctl/cli/failure.h"

#include <span>

namespace ctl {

using command_line::Command;
using command_line::Option;
using command_line::Run; // of a command; may throw Failure

// Adds a command with its options to the program. When it is chosen, `run` becomes what it does.
// Each command has such a function. `run` outlives the command.
using AddCommand = void (*)(Command program, Run& run);

// Runs kelprobectl with these commands and returns its exit status. Prints errors.
[[nodiscard]] int runCommandLine(int argc, char** argv, std::span<const AddCommand> commands);

} // namespace ctl
