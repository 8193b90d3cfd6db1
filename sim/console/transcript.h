// What kelprobe-sim prints about its devices.
#pragma once

#include "sim/device/wire_bytes.h"

#include <mutex>
#include <string>

namespace sim {

// A line about a report: "ring LED on         03 08 00".
std::string describe(const std::string& what, const Bytes& report);

// Prints whole lines to standard output and flushes each. Any thread.
class Transcript {
public:
    // With more than one device, each line begins with the device's number.
    explicit Transcript(size_t devices)
        : numbered_(devices > 1)
    {
    }

    void print(size_t device, const std::string& line);

private:
    const bool numbered_;
    std::mutex mutex_;
};

} // namespace sim
