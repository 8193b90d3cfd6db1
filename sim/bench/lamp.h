// An LED of a simulated device, as a person sees it.
#pragma once

#include <chrono>
#include <vector>

namespace sim {

enum class LampState { kOff, kOn, kBlink };

// Blinks after four regular changes, which are two flashes: no phase between two changes is longer
// than kMaxPhase, and of one phase and the next one of the same kind (on or off) neither is more
// than twice as long as the other. It blinks until the phase that runs is too long for that.
//
// A phase of less than kFlicker is not seen: the two changes at its ends do not count.
//
// Not locked.
class Lamp {
public:
    using Time = std::chrono::microseconds; // of any clock; never goes back
    static constexpr std::chrono::milliseconds kFlicker{40};
    static constexpr std::chrono::milliseconds kMaxPhase{1500};

    void set(bool on, Time now)
    {
        if (on == on_)
            return;
        on_ = on;
        if (!changes_.empty() && now - changes_.back() < kFlicker)
            changes_.pop_back();
        else
            changes_.push_back(now);
        if (changes_.size() > kKept)
            changes_.erase(changes_.begin());
    }

    [[nodiscard]] LampState state(Time now) const
    {
        if (blinks(now))
            return LampState::kBlink;
        return on_ ? LampState::kOn : LampState::kOff;
    }

private:
    static constexpr size_t kBlinking = 4;
    static constexpr size_t kKept = kBlinking + 1; // a flicker takes one away

    [[nodiscard]] bool blinks(Time now) const
    {
        if (changes_.size() < kBlinking)
            return false;
        const Time* const last = &changes_.back();
        const Time phases[] = {last[-2] - last[-3], last[-1] - last[-2], last[0] - last[-1]};
        const Time running = now - *last;
        for (const Time phase : {phases[0], phases[1], phases[2], running})
            if (phase > kMaxPhase)
                return false;
        return phases[2] <= 2 * phases[0] && phases[0] <= 2 * phases[2] && running <= 2 * phases[1];
    }

    bool on_ = false;
    std::vector<Time> changes_; // the latest ones, oldest first
};

} // namespace sim
