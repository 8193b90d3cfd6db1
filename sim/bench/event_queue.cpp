#include "sim/bench/event_queue.h"

#include <sys/eventfd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

namespace sim {

EventQueue::EventQueue()
    : start_(std::chrono::steady_clock::now())
    , owner_(std::this_thread::get_id())
    , wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (wake_.get() < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

// The time is taken under the lock, so that times never go back.
void EventQueue::add(BenchEvent event)
{
    std::unique_lock lock(mutex_);
    if (std::this_thread::get_id() != owner_)
        room_.wait(lock, [this] { return closed_ || events_.size() < kMaxWaiting; });
    if (closed_)
        return;
    event.time = now();
    events_.push_back(std::move(event));
    eventfd_write(wake_.get(), 1);
}

std::vector<BenchEvent> EventQueue::take()
{
    const std::lock_guard lock(mutex_);
    eventfd_t ignored = 0;
    eventfd_read(wake_.get(), &ignored);
    room_.notify_all();
    return std::exchange(events_, {});
}

bool EventQueue::isEmpty()
{
    const std::lock_guard lock(mutex_);
    return events_.empty();
}

std::chrono::microseconds EventQueue::now() const
{
    return std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - start_);
}

void EventQueue::close()
{
    const std::lock_guard lock(mutex_);
    closed_ = true;
    room_.notify_all();
}

} // namespace sim
