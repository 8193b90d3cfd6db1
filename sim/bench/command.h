// The commands of the bench. One table serves all front ends: standard input of kelprobe-sim run,
// the control socket, and the help.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Json {
class Value;
}

namespace sim {

class Bench;
class BenchDevice;

// Where the answer to a command goes: JSON objects, the last of which has a "status".
class Answers {
public:
    virtual ~Answers() = default;
    virtual void send(const Json::Value& object) = 0;

    void text(const std::string& line); // {"text": line}
};

enum CommandStatus : int {
    kDone = 0,
    kNotMet = 1, // an expectation was not met, or the device cannot do it
    kNotUnderstood = 2,
    kTooManyClients = 3,
};

struct CommandResult {
    CommandStatus status = kDone;
    std::string error = {}; // one line, unless done; not always printable
};

// The command ends when the check is done, or with the last result of the check after this time.
struct CommandWait {
    std::function<CommandResult()> check;
    std::chrono::milliseconds within;
};

// The command ends when the front end gives the next one. Until then events are sent.
struct CommandStream { };

using CommandOutcome = std::variant<CommandResult, CommandWait, CommandStream>;

struct CommandCall {
    Bench& bench;
    BenchDevice& device;
    Answers& answers;
    std::vector<std::string_view> words = {}; // after the command's name, without options
    bool json = false;
    bool hold = false;
    std::optional<std::chrono::milliseconds> within = {};
};

struct Command {
    std::string_view name;
    std::string_view arguments; // "BUTTON [--hold]"; a call may have only the options in it
    std::string_view help;      // lines of at most 55 characters; empty for one that is not shown
    CommandOutcome (*run)(const CommandCall& call);
};

// In the order of the help.
[[nodiscard]] std::span<const Command> commands();

// "press BUTTON [--hold]"
[[nodiscard]] std::string usageOf(const Command& command);

// The text of the command `help`: a line or more for each command.
[[nodiscard]] std::string commandHelp();

// Executes a line: "2: mute" is for the second device, "mute" for the first.
[[nodiscard]] CommandOutcome runCommand(Bench& bench, Answers& answers, std::string_view line);

} // namespace sim
