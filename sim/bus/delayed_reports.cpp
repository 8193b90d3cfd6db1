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

std::vector<Panel::InputReport> DelayedReports::takeAll()
{
    const std::lock_guard lock(mutex_);
    std::vector<Panel::InputReport> reports;
    for (Entry& entry : entries_)
        reports.push_back(std::move(entry.report));
    entries_.clear();
    return reports;
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
