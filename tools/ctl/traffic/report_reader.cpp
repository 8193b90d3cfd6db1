#include "tools/ctl/traffic/report_reader.h"

#include <utility>

namespace ctl {

constexpr int kWaitMs = 100; // until a signal is noticed

ReportReader::ReportReader(HidConnection& connection, const StopSignals& stop)
    : connection_(connection)
    , stop_(stop)
    , thread_([this] { run(); })
{
}

ReportReader::~ReportReader()
{
    {
        const std::lock_guard lock(mutex_);
        abandoned_ = true;
    }
    thread_.join();
}

std::vector<ReportReader::Report> ReportReader::take()
{
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return ended_ || !reports_.empty(); });
    return std::exchange(reports_, {});
}

bool ReportReader::gone()
{
    const std::lock_guard lock(mutex_);
    return gone_;
}

void ReportReader::run()
{
    bool gone = false;
    try {
        while (!stop_.stopped() && readOne()) { }
    } catch (const Failure&) {
        gone = true; // the only reason why reading fails
    }
    const std::lock_guard lock(mutex_);
    ended_ = true;
    gone_ = gone;
    changed_.notify_one();
}

bool ReportReader::readOne()
{
    const std::span<const uint8_t> bytes = connection_.read(kWaitMs);
    const std::lock_guard lock(mutex_);
    if (!bytes.empty()) {
        reports_.push_back({std::chrono::steady_clock::now(), {bytes.begin(), bytes.end()}});
        changed_.notify_one();
    }
    return !abandoned_;
}

} // namespace ctl
