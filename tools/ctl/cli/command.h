// What the commands of kelprobectl have in common: how they are declared and how they end.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <span>
#include <stdexcept>

namespace ctl {

// Exit statuses. They are part of the program's interface.
enum ExitStatus : int {
    kFine = 0,
    kFellShort = 1, // the device does not do what it should
    kWrongUse = 2,  // a mistake on the command line or in a file
    kNoAccess = 3,  // no device, or a device, file or stream that cannot be used
};

// Ends the command with an exit status. what() is one line for standard error that names the remedy
// if there is one.
class Failure : public std::runtime_error {
public:
    Failure(ExitStatus exitStatus, const std::string& what)
        : std::runtime_error(what)
        , status(exitStatus)
    {
    }

    const ExitStatus status;
};

// The command that was chosen, with its options. Returns the exit status. May throw Failure.
using Run = std::function<int()>;

// Declares a command: adds a subcommand with its options to `app`, whose callback sets `run`. Each
// command has such a function. `run` and `app` outlive the command.
using AddCommand = void (*)(CLI::App& app, Run& run);

// Runs kelprobectl with these commands and returns its exit status. Prints errors.
[[nodiscard]] int runCommandLine(int argc, char** argv, std::span<const AddCommand> commands);

} // namespace ctl
