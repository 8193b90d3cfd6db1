// The events of a test in their order, from any thread: "03 00 00; mute; ".
#pragma once

#include <mutex>
#include <string>
#include <utility>

class Story {
public:
    void add(const std::string& event)
    {
        const std::lock_guard guard(mutex_);
        text_ += event + "; ";
        ++length_;
    }
    // The number of events since the last take().
    size_t length()
    {
        const std::lock_guard guard(mutex_);
        return length_;
    }
    std::string take()
    {
        const std::lock_guard guard(mutex_);
        length_ = 0;
        return std::exchange(text_, {});
    }

private:
    std::mutex mutex_;
    std::string text_;
    size_t length_ = 0;
};
