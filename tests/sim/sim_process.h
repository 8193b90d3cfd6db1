// kelprobe-sim as a process, for tests.
#pragma once

#include "file_descriptor.h"

#include <optional>
#include <string>
#include <vector>

class SimProcess {
public:
    // TMPDIR is `directory`, in which the bus is made.
    SimProcess(const std::vector<std::string>& arguments, const std::string& directory);
    ~SimProcess(); // kills it if it still runs
    SimProcess(const SimProcess&) = delete;
    SimProcess& operator=(const SimProcess&) = delete;

    void command(const std::string& line);
    void endInput() { input_.reset(); }

    // The next line of standard output; nothing at its end or after ten seconds.
    std::optional<std::string> line();
    // All lines from here to the end, each ended by "\n".
    std::string rest();

    void signal(int number) const;
    int exitStatus(); // waits for the end; -1 if a signal ended it

private:
    pid_t pid_ = -1;
    sim::FileDescriptor input_;
    sim::FileDescriptor output_;
    std::string unread_;
};
