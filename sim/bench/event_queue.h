// The events of the bench, oldest first.
#pragma once

#include "sim/bench/bench_event.h"
#include "sim/bus/file_descriptor.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace sim {

// Events come from the bench's thread, which makes the object, from umockdev's thread, and from the
// threads of devices with a delay. Only the bench's thread takes them.
class EventQueue {
public:
    EventQueue(); // throws std::system_error
    EventQueue(const EventQueue&) = delete;
    EventQueue& operator=(const EventQueue&) = delete;

    // Gives the event its time. While kMaxWaiting events wait, blocks any thread but the bench's
    // until some are taken or the queue is closed. Any thread.
    void add(BenchEvent event);

    // Becomes readable when there are events, for poll(). Never read from it.
    int fd() const { return wake_.get(); }

    [[nodiscard]] std::vector<BenchEvent> take();
    [[nodiscard]] bool isEmpty();

    // Since the object was made. Any thread.
    [[nodiscard]] std::chrono::microseconds now() const;

    // From now on events are dropped and nothing blocks. Any thread.
    void close();

private:
    static constexpr size_t kMaxWaiting = 16'384;

    const std::chrono::steady_clock::time_point start_;
    const std::thread::id owner_;
    const FileDescriptor wake_;
    std::mutex mutex_; // guards the fields below
    std::condition_variable room_;
    std::vector<BenchEvent> events_;
    bool closed_ = false;
};

} // namespace sim
