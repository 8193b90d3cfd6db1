// Reads a device's input reports without losing any.
#pragma once

#include "tools/ctl/cli/stop_signals.h"
#include "tools/ctl/traffic/hid_connection.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace ctl {

// hidapi keeps 30 reports, so they are taken from it on a thread of their own, which does nothing
// else.
class ReportReader {
public:
    struct Report {
        std::chrono::steady_clock::time_point time; // when it was read
        report::Bytes bytes;                        // as on the wire
    };

    // Starts reading. Both must outlive the object.
    ReportReader(HidConnection& connection, const StopSignals& stop);
    ~ReportReader(); // ends within 100 ms
    ReportReader(const ReportReader&) = delete;
    ReportReader& operator=(const ReportReader&) = delete;

    // Waits for reports and returns all that have arrived since the last call; none when reading
    // has ended, by a signal or because the device has gone.
    [[nodiscard]] std::vector<Report> take();

    // Whether the device has gone. After take() has returned none.
    [[nodiscard]] bool gone();

private:
    void run();
    // Returns false when reading ends.
    bool readOne();

    HidConnection& connection_;
    const StopSignals& stop_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Report> reports_; // not yet taken
    bool ended_ = false;
    bool gone_ = false;
    bool abandoned_ = false; // by the destructor
    std::thread thread_;     // the last member, because it uses the others
};

} // namespace ctl
