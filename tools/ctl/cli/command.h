// How the commands of kelprobectl are declared.
#pragma once

#include "tools/ctl/cli/failure.h"

#include <functional>
#include <span>

namespace CLI {
class App;
}

namespace ctl {

// The command that was chosen, with its options. Returns the exit status. May throw Failure.
using Run = std::function<int()>;

// Declares a command: adds a subcommand with its options to `app`, whose callback sets `run`. Each
// command has such a function. `run` and `app` outlive the command.
using AddCommand = void (*)(CLI::App& app, Run& run);

// Runs kelprobectl with these commands and returns its exit status. Prints errors.
[[nodiscard]] int runCommandLine(int argc, char** argv, std::span<const AddCommand> commands);

} // namespace ctl
