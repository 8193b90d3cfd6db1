// How a measured program tells the benchmark when something happened, and is told to act: messages
// over a socket whose number is in the environment. All times are CLOCK_MONOTONIC, in nanoseconds,
// which all processes share.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <sys/socket.h>

namespace bench {

inline constexpr const char* kChannelVariable = "KELPROBE_BENCH_CHANNEL";

enum class Moment : uint32_t {
    Ready,  // the device is open
    Frame,  // a frame is on the screen
    Report, // what an input report leads to has come about
    Acted,  // a command is carried out; its time is when that began
};

struct Event {
    Moment moment = Moment::Ready;
    int64_t time = 0;
};

// What Kelprobe clicks on, in the window's pixels. To the others: write a report.
struct Command {
    int32_t x = 0;
    int32_t y = 0;
};

inline int64_t now()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

// -1 in a program that is not being measured.
inline int channelFromEnvironment()
{
    const char* const number = std::getenv(kChannelVariable);
    return number ? std::atoi(number) : -1;
}

// Without a benchmark to listen there is nothing to do about it.
inline void tell(int channel, Moment moment, int64_t time)
{
    const Event event{moment, time};
    static_cast<void>(send(channel, &event, sizeof event, MSG_NOSIGNAL));
}

// Blocks. False when the benchmark has gone.
[[nodiscard]] inline bool receive(int channel, Command& command)
{
    return recv(channel, &command, sizeof command, 0) == sizeof command;
}

} // namespace bench
