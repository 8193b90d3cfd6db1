#include "sim/device/output_log.h"

#include <utility>

namespace sim {

void OutputLog::add(Bytes report)
{
    const std::lock_guard lock(mutex_);
    reports_.push_back(std::move(report));
    if (reports_.size() > kMaxReports)
        reports_.pop_front();
    arrived_.notify_all();
}

bool OutputLog::waitFor(size_t count, std::chrono::milliseconds limit)
{
    std::unique_lock lock(mutex_);
    return arrived_.wait_for(lock, limit, [&] { return reports_.size() >= count; });
}

std::vector<Bytes> OutputLog::take()
{
    const std::lock_guard lock(mutex_);
    const std::deque<Bytes> reports = std::exchange(reports_, {});
    return {reports.begin(), reports.end()};
}

} // namespace sim
