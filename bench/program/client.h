// A measured program: a process on the simulated bus and the display, with a channel to it.
#pragma once

#include "bench/program/channel.h"

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace bench {

enum class Probe { None, Preloaded }; // into programs with a window
enum class Capture { None, Lines };   // of standard output

class Client {
public:
    // Starts the program and drops the output that is not captured. Throws std::system_error if it
    // cannot be started. The destructor kills it.
    Client(const std::vector<std::string>& command, Probe probe, Capture capture = Capture::None);
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    int64_t startTime() const { return startTime_; } // just before the process is created

    void send(const Command& command) const;

    // Blocks until the next such event, drops others, and returns its time. Throws
    // std::runtime_error if it does not arrive within 20 s.
    int64_t await(Moment moment) const;

    // Blocks until the program has ended, and returns the time then. Throws std::runtime_error if
    // it ends with an exit status other than 0. To be called last.
    int64_t awaitEnd();

    // Tell the program that no more commands come, or send it SIGINT, then do the same.
    void endInput();
    void interrupt();

    // Of captured output: the number of lines so far. awaitLines() blocks until there are as many,
    // and throws std::runtime_error if they do not come within 20 s.
    size_t lines() const;
    void awaitLines(size_t count) const;

    // Drops the events that have arrived.
    void discardEvents() const;

    // Blocks until no event has arrived for a few milliseconds. Drops events.
    void settle() const;

    int64_t cpuTime() const;      // of all its threads so far, in nanoseconds
    size_t residentBytes() const; // blocks until it has stopped changing

private:
    std::optional<Event> next(std::chrono::milliseconds limit) const;
    size_t residentNow() const;

    int channel_ = -1;
    int captured_ = -1; // a file in memory
    pid_t pid_ = -1;
    int64_t startTime_ = 0;
};

} // namespace bench
