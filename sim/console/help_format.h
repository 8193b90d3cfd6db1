// The help of kelprobe-sim.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace sim {

inline constexpr const char* kBenchGroup = "For a running bench"; // of commands

// CLI11's, but with the arguments that CLI11 does not know: those of the commands for a running
// bench, and PROGRAM. For the whole program; subcommands that are added later inherit it.
class HelpFormat final : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App* app, std::string name) const override;
    std::string make_subcommand(const CLI::App* command) const override;
};

} // namespace sim
