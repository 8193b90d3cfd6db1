// A program under measurement: a process on the simulated bus and the display, with a channel to
// it.
#pragma once

#include "bench/program/channel.h"

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace bench {

enum class Probe { None, Preloaded }; // into programs with a window

class Client {
public:
    // The program ends with this object. Its output is dropped: what it warns of is not what is
    // looked at here. Throws std::system_error when it cannot be started.
    Client(const std::vector<std::string>& command, Probe probe);
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    int64_t startTime() const { return startTime_; } // just before the process is made

    void send(const Command& command) const;

    // Blocks until the next such event, dropping others; returns its time. Throws
    // std::runtime_error when it does not come about.
    int64_t await(Moment moment) const;

    // Blocks until nothing has happened for a few milliseconds, dropping what does.
    void settle() const;

    int64_t cpuTime() const;      // of all its threads so far, in nanoseconds
    size_t residentBytes() const; // once that has stopped changing

private:
    std::optional<Event> next(std::chrono::milliseconds limit) const;
    size_t residentNow() const;

    int channel_ = -1;
    pid_t pid_ = -1;
    int64_t startTime_ = 0;
};

} // namespace bench
