// The output reports that a device received, in the order of their arrival.
//
// Keeps the newest kMaxReports that were not taken.
#pragma once

#include "sim/device/wire_bytes.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace sim {

// Any thread may call any of these.
class OutputLog {
public:
    static constexpr size_t kMaxReports = 65536;

    void add(Bytes report);

    // Waits until there are at least `count` reports that have not been taken. False if that takes
    // longer than `limit`.
    [[nodiscard]] bool waitFor(size_t count, std::chrono::milliseconds limit);

    // Returns the reports since the last call, oldest first.
    [[nodiscard]] std::vector<Bytes> take();

private:
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<Bytes> reports_;
};

} // namespace sim
