// A program that this process starts, waits for and passes signals on to.
#pragma once

#include "tools/ctl/trace/unique_fd.h"

#include <csignal>
#include <map>
#include <string>
#include <vector>

namespace ctl {

// The program has this process's group and standard streams. A process has at most one object, and
// one thread when it is created. From then on SIGINT, SIGQUIT, SIGTERM and SIGHUP do not end this
// process: the terminal sends its signals to the program, too, and others are passed on to it.
class TracedProgram {
public:
    struct StartError {
        int exitStatus; // 127 if the program is not found, 126 if it cannot be run
        std::string text;
    };

    // `command` is the program, which is searched for in PATH, and its arguments; `environment` is
    // added to this process's. Throws StartError; Failure if there are no resources.
    TracedProgram(
        std::vector<std::string> command, const std::map<std::string, std::string>& environment);
    TracedProgram(const TracedProgram&) = delete;
    TracedProgram& operator=(const TracedProgram&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }

    // Becomes readable when there is something to do for handleSignals().
    [[nodiscard]] int signalFd() const { return signals_.get(); }

    // Passes signals on. Returns whether the program has ended.
    [[nodiscard]] bool handleSignals();

    // Of a program that has ended: its own, or 128 and the number of the signal that ended it.
    [[nodiscard]] int exitStatus() const { return exitStatus_; }

private:
    [[nodiscard]] bool collect();

    UniqueFd signals_;
    pid_t pid_ = -1;
    int exitStatus_ = 0;
};

} // namespace ctl
