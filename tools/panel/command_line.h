// The command line of kelprobe-panel.
#pragma once

#include <optional>
#include <string>
#include <variant>

namespace panel {

// Exit statuses. They are part of the program's interface.
enum ExitStatus : int {
    kFine = 0,
    kWrongUse = 2, // a mistake on the command line, no KELPROBE_SIM, or no such device
    kNoAccess = 3, // no bench, display or QML module, or standard output cannot be written
};

enum class Look { kSystem, kLight, kDark };

struct Options {
    std::string socket;        // path
    std::optional<int> device; // number, from 1; all devices without it
    Look look = Look::kSystem;
};

// A text that was asked for, or one line about a mistake.
struct EarlyExit {
    ExitStatus status;
    std::string text; // without the last line end
};

// `socket` is the value of KELPROBE_SIM; null if it is not set.
[[nodiscard]] std::variant<Options, EarlyExit> parseCommandLine(
    int argc, const char* const* argv, const char* socket);

} // namespace panel
