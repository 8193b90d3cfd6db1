// Input reports that a device sends only after a while.
#pragma once

#include "sim/device/panel.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace sim {

// Calls a function with each report when its time has come, in the order in which they were added,
// on a thread of its own, which starts with the first report.
//
// Any thread may call any of these, except that the function must not destroy the object.
class DelayedReports {
public:
    using Send = std::function<void(Panel::InputReport)>;

    static constexpr size_t kMaxReports = 65536; // waiting; later ones are lost

    explicit DelayedReports(Send send)
        : send_(std::move(send))
    {
    }
    ~DelayedReports(); // drops the reports that wait; the function is not running any more
    DelayedReports(const DelayedReports&) = delete;
    DelayedReports& operator=(const DelayedReports&) = delete;

    // False if too many are waiting.
    [[nodiscard]] bool add(Panel::InputReport report, std::chrono::milliseconds delay);

    // Removes the reports that wait, and returns them in order. One that is being sent is not
    // stopped.
    std::vector<Panel::InputReport> takeAll();

    // Whether no report waits and none is being sent.
    [[nodiscard]] bool isEmpty();

private:
    using Clock = std::chrono::steady_clock;
    struct Entry {
        Clock::time_point time;
        Panel::InputReport report;
    };

    void run();

    const Send send_;
    std::mutex mutex_; // guards the fields below
    std::condition_variable changed_;
    std::deque<Entry> entries_;
    bool sending_ = false;
    bool ended_ = false;
    std::thread thread_;
};

} // namespace sim
