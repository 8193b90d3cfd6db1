// A program that this process starts, waits for and passes signals on to.
#pragma once

#include "tools/ctl/cli/unique_fd.h"

#include <csignal>
#include <map>
#include <string>
#include <vector>

namespace ctl {

// The program has this process's group and standard streams. A process has at most one object, and
// one thread until start() returns. While it exists, signals that would end this process do not:
// the terminal sends its signals to the program, too, and others are passed on to it. Those that
// come before start() wait for it.
class TracedProgram {
public:
    struct StartError {
        int exitStatus; // 127 if the program is not found, 126 if it cannot be run
        std::string text;
    };

    // Blocks the signals, for good. Throws Failure if there are no resources.
    TracedProgram();
    TracedProgram(const TracedProgram&) = delete;
    TracedProgram& operator=(const TracedProgram&) = delete;

    // To be called once. `command` is the program, which is searched for in PATH, and its
    // arguments; `environment` is added to this process's. From then on standard input and output
    // are the program's only: when it closes them, nobody has them open. Throws StartError; Failure
    // if there are no resources.
    void start(
        std::vector<std::string> command, const std::map<std::string, std::string>& environment);

    [[nodiscard]] pid_t pid() const { return pid_; }

    // Becomes readable when there is something to do for handleSignals().
    [[nodiscard]] int signalFd() const { return signals_.get(); }

    // Passes signals on. Returns whether the program has ended.
    [[nodiscard]] bool handleSignals();

    // Of a program that has ended: its own, or 128 and the number of the signal that ended it.
    [[nodiscard]] int exitStatus() const { return exitStatus_; }

private:
    [[nodiscard]] bool collect();

    sigset_t inheritedMask_{};
    UniqueFd signals_;
    pid_t pid_ = -1;
    int exitStatus_ = 0;
};

} // namespace ctl
