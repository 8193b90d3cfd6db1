// Messages between the benchmark and a measured program, over a socket. An environment variable
// contains the socket's number. The program reports events with their times; the benchmark sends
// commands. All times are CLOCK_MONOTONIC in nanoseconds, the same clock for all processes.
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
    Report, // the effect of an input report is complete
    Acted,  // a command was executed; the time is that of its start
};

struct Event {
    Moment moment = Moment::Ready;
    int64_t time = 0;
};

// Kelprobe: click on this pixel of the window. The others: write a report.
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

// Ignores errors: the benchmark may have ended.
inline void tell(int channel, Moment moment, int64_t time)
{
    const Event event{moment, time};
    static_cast<void>(send(channel, &event, sizeof event, MSG_NOSIGNAL));
}

// Blocks. Returns false if the benchmark has ended.
[[nodiscard]] inline bool receive(int channel, Command& command)
{
    return recv(channel, &command, sizeof command, 0) == sizeof command;
}

} // namespace bench
