#include "sim/console/command_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <sstream>

namespace {

struct Describe {
    std::string operator()(const sim::RunCommand& run) const
    {
        std::string text = "run";
        for (const sim::Profile* profile : run.profiles)
            text += ' ' + std::string(profile->name);
        return text + " -- " + *run.program;
    }
    std::string operator()(sim::ListCommand) const { return "list"; }
    std::string operator()(sim::HelpCommand) const { return "help"; }
    std::string operator()(sim::VersionCommand) const { return "version"; }
    std::string operator()(const sim::UsageError& error) const { return error.text; }
};

TEST(CommandLine, IsUnderstoodOrExplained)
{
    for (const auto& [line, expected] : {
             std::pair{"run -- p", "run speakerphone -- p"},
             {"run webcam speakerphone -- p --help", "run webcam speakerphone -- p"},
             {"run -- --help", "run speakerphone -- --help"},
             {"run --help", "help"},
             {"run webcam -h -- p", "help"},
             {"help", "help"},
             {"--help", "help"},
             {"list", "list"},
             {"--version", "version"},
             {"", "expected a command"},
             {"lst", "unknown command lst; did you mean list?"},
             {"dance", "unknown command dance"},
             {"--versoin", "unknown option --versoin; did you mean --version?"},
             {"-x", "unknown option -x"},
             {"list all", "list: unexpected argument all"},
             {"run speakerphone", "run: expected -- and a program"},
             {"run --", "run: expected -- and a program"},
             {"run webcm -- p", "unknown profile webcm; did you mean webcam?"},
             {"run toaster -- p", "unknown profile toaster"},
             {"run --hlep -- p", "unknown option --hlep; did you mean --help?"},
         }) {
        std::istringstream stream(line);
        std::vector<std::string> words{std::istream_iterator<std::string>(stream), {}};
        std::vector<char*> arguments;
        std::transform(words.begin(), words.end(), std::back_inserter(arguments),
            [](std::string& word) { return word.data(); });
        arguments.push_back(nullptr);
        EXPECT_EQ(std::visit(Describe(), sim::parseCommandLine(arguments.data())), expected)
            << line;
    }
}

} // namespace
