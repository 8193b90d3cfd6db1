// An LED of a simulated device.
#pragma once

#include <chrono>

namespace sim {

enum class LampState { kOff, kOn, kBlink };

// Blinks if it was switched at least three times, the last time at most kMaxGap ago, and with at
// most kMaxGap between one time and the next. Not locked.
class Lamp {
public:
    using Time = std::chrono::steady_clock::time_point;
    static constexpr std::chrono::milliseconds kMaxGap{1500};

    // Times never go back. False if it was already on, or off.
    bool set(bool on, Time now)
    {
        if (on == on_)
            return false;
        on_ = on;
        changes_ = changes_ > 0 && now - last_ <= kMaxGap ? changes_ + 1 : 1;
        last_ = now;
        return true;
    }

    [[nodiscard]] bool isOn() const { return on_; }

    [[nodiscard]] LampState state(Time now) const
    {
        constexpr unsigned kBlinking = 3;
        if (changes_ >= kBlinking && now - last_ <= kMaxGap)
            return LampState::kBlink;
        return on_ ? LampState::kOn : LampState::kOff;
    }

private:
    bool on_ = false;
    unsigned changes_ = 0; // without a longer gap between them
    Time last_{};
};

} // namespace sim
