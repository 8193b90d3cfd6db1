// The program that is run with the simulated devices.
#pragma once

#include "sim/control/event_source.h"
#include "sim/control/process_group.h"

#include <glib.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim {

// The program could not be started. what() names it and the reason.
class ClientStartError : public std::runtime_error {
public:
    enum class Reason { kNotFound, kCannotRun };

    ClientStartError(Reason why, const std::string& what)
        : std::runtime_error(what)
        , reason(why)
    {
    }

    const Reason reason;
};

// What a program is started with.
struct ClientOptions {
    std::string libraries;           // added to the inherited LD_PRELOAD after a colon
    std::string socket;              // of the bench, for the environment
    std::filesystem::path groupFile; // is written: the program's ProcessGroup
    // The program has our standard input, and the terminal if that is one; otherwise its standard
    // input is empty.
    bool takesInput = false;
};

// A child process in a new process group, with the default action for every signal (an ignored
// SIGHUP stays ignored) and none blocked. Its output is written to our standard error. It has our
// environment with the additions above; our own environment is not changed. If this process is
// killed, so is the child. If the child has the terminal and is stopped, by Ctrl-Z for example, so
// are this process and its group, until a shell continues them.
//
// What the child starts becomes a child of this process when its parent ends, and is reaped here.
// Uses GLib's default main context, which has to run in the thread that calls these. SIGCHLD must
// not be ignored.
class ClientProcess {
public:
    // Called once from the main context after the process has ended: with its exit status or, as in
    // a shell, 128 + the signal that ended it.
    using EndCallback = std::function<void(int status)>;

    // Starts `command`. Throws ClientStartError.
    ClientProcess(
        const std::vector<std::string>& command, const ClientOptions& options, EndCallback onEnd);

    // Ends the process group with SIGTERM and, if the process has not ended after two seconds, with
    // SIGKILL, and then all that it has started, directly or not, in the same way. Runs the main
    // context until the process has ended, so onEnd has been called when this returns.
    ~ClientProcess();

    ClientProcess(const ClientProcess&) = delete;
    ClientProcess& operator=(const ClientProcess&) = delete;

private:
    void handleEnd(int waitStatus);
    bool waitForEnd(guint milliseconds);
    void check();
    void passStop() const;

    const EndCallback onEnd_;
    const std::string socket_;
    const bool hasTerminal_;
    GPid pid_ = -1;
    std::optional<ProcessGroup> group_;
    std::optional<EventSource> checks_;
    bool ended_ = false;
};

} // namespace sim
