// The commands and options of kelprobectl as plain data, for everything that is made from them.
#pragma once

#include "tools/ctl/cli/command.h"

#include <string>
#include <vector>

namespace ctl {

struct OptionModel {
    // What a shell can complete.
    enum class Values { kNone, kFile, kCommand, kProgramAndArguments, kOwnCommand };

    std::vector<std::string> names; // "-h", "--help"; empty for a positional argument
    std::string argument;           // "FILE"; empty for a flag
    Values values = Values::kNone;
    std::string description;
    bool required = false;
    bool repeated = false;
};

struct CommandModel {
    std::string name; // "kelprobectl" for the program itself
    std::string description;
    std::string footer; // the example
    std::vector<OptionModel> options;
    std::vector<OptionModel> positionals;
    std::vector<CommandModel> commands;
};

// Leaves out hidden commands and options.
[[nodiscard]] CommandModel modelOf(const CLI::App& app);

// Each returns the whole text of a file.
[[nodiscard]] std::string bashCompletion(const CommandModel& program);
[[nodiscard]] std::string zshCompletion(const CommandModel& program);
[[nodiscard]] std::string fishCompletion(const CommandModel& program);
[[nodiscard]] std::string manPage(const CommandModel& program);

} // namespace ctl
