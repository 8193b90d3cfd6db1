// The command line of kelprobe-sim.
#pragma once

#include "sim/profile/profiles.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace sim {

struct RunCommand {
    std::vector<const Profile*> profiles; // one device each, at least one
    char* const* program;                 // with its arguments; as for execvp()
};
struct ListCommand { };
struct HelpCommand { };
struct VersionCommand { };
struct UsageError {
    std::string text; // one line
};
using CommandLine = std::variant<RunCommand, ListCommand, HelpCommand, VersionCommand, UsageError>;

// `arguments` are those after the program's name, ended by null, and must outlive the result.
// Throws std::runtime_error if the profiles cannot be read.
[[nodiscard]] CommandLine parseCommandLine(char* const* arguments);

// What --help prints.
std::string helpText();

} // namespace sim
