// A sink that keeps what the reader thread tells it, in order.
#pragma once

#include "IHostHidStack.h"

#include <mutex>
#include <string>
#include <vector>

class RecordingSink final : public KX::IHostStackSink {
public:
    void OnDeviceMute() override { Add("mute"); }
    void OnDeviceUnmute() override { Add("unmute"); }
    void OnDeviceOffHook() override { Add("off-hook"); }
    void OnDeviceHangUp() override { Add("hang-up"); }

    std::vector<std::string> Take()
    {
        const std::lock_guard guard(mutex_);
        return std::exchange(events_, {});
    }

private:
    void Add(const char* event)
    {
        const std::lock_guard guard(mutex_);
        events_.emplace_back(event);
    }

    std::mutex mutex_;
    std::vector<std::string> events_;
};
