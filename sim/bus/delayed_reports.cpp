#include "sim/bus/delayed_reports.h"

#include <utility>

namespace sim {

DelayedReports::~DelayedReports()
{
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable())
        thread_.join();
}

bool DelayedReports::add(Panel::InputReport report, std::chrono::milliseconds delay)
{
    const std::lock_guard lock(mutex_);
    if (entries_.size() >= kMaxReports)
        return false;
    entries_.push_back({Clock::now() + delay, std::move(report)});
    if (!thread_.joinable())
        thread_ = std::thread([this] { run(); });
    changed_.notify_all();
    return true;
}

void DelayedReports::clear()
{
    const std::lock_guard lock(mutex_);
    entries_.clear();
}

bool DelayedReports::isEmpty()
{
    const std::lock_guard lock(mutex_);
    return entries_.empty() && !sending_;
}

void DelayedReports::run()
{
    std::unique_lock lock(mutex_);
    while (!ended_) {
        if (entries_.empty()) {
            changed_.wait(lock);
        } else if (const auto time = entries_.front().time; time > Clock::now()) {
            changed_.wait_until(lock, time);
        } else {
            Panel::InputReport report = std::move(entries_.front().report);
            entries_.pop_front();
            sending_ = true;
            lock.unlock();
            send_(std::move(report));
            lock.lock();
            sending_ = false;
        }
    }
}

} // namespace sim
