// What CLI::App::parse() threw, as text for the user. Pure.
#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace command_line {

// Whether help or the version was asked for, which CLI11 also reports as an error.
[[nodiscard]] bool isRequest(const CLI::ParseError& outcome);

// The help or the version, without a line end after the last line.
[[nodiscard]] std::string requestedText(const CLI::App& app, const CLI::ParseError& request);

// The mistake in one line without control characters: "unknown option --jsn; did you mean
// --json?".
[[nodiscard]] std::string mistake(const CLI::App& app, const CLI::ParseError& error);

// The same, and what to try if it suggests nothing: "unknown option --x; try kelprobe-sim --help".
[[nodiscard]] std::string mistakeWithRemedy(const CLI::App& app, const CLI::ParseError& error);

// The command line to type for help: "kelprobe-sim run --help" after a mistake in the command run.
[[nodiscard]] std::string helpCommand(const CLI::App& app);

} // namespace command_line
