// The program that is run with the simulated devices.
#pragma once

#include "sim/bus/file_descriptor.h"

#include <sys/types.h>

#include <string>

namespace sim {

// It finds the bus of this process instead of the machine's. It and what it
// starts are a process group of their own. Its standard input is empty; its
// output goes to our standard error.
class ClientProcess {
public:
    // `command` is as for execvp. Throws std::system_error with what() fit to be
    // shown; the code is that of the failed start.
    explicit ClientProcess(char* const* command);
    // Ends it if it still runs: politely, then by force after two seconds.
    ~ClientProcess();
    ClientProcess(const ClientProcess&) = delete;
    ClientProcess& operator=(const ClientProcess&) = delete;

    // Becomes readable when it ends.
    int pidFd() const { return pidFd_.get(); }

    // Waits for its end. As a shell has it: the exit status, or 128 + signal.
    int wait();

private:
    bool endsWithin(int milliseconds) const;

    pid_t pid_ = -1;
    FileDescriptor pidFd_;
    bool waited_ = false;
};

// The value for the client's LD_PRELOAD. Throws std::runtime_error if one of
// the libraries cannot be found.
std::string preloadList();

} // namespace sim
