#include "bench/program/client.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace bench {
namespace {

constexpr std::chrono::milliseconds kPatience{20'000};
constexpr std::chrono::milliseconds kQuiet{5};

[[noreturn]] void fail(int error, const char* what)
{
    throw std::system_error(error, std::generic_category(), what);
}

std::vector<std::string> environmentOf(Probe probe, int channel)
{
    std::string preload = BENCH_SIM_PRELOAD ":libumockdev-preload.so.0";
    if (probe == Probe::Preloaded)
        preload += ":" BENCH_PROBE;
    std::vector<std::string> variables{
        "LD_PRELOAD=" + preload, std::string(kChannelVariable) + '=' + std::to_string(channel)};
    for (char** variable = environ; *variable; ++variable)
        if (!std::string_view(*variable).starts_with("LD_PRELOAD="))
            variables.emplace_back(*variable);
    return variables;
}

std::vector<char*> pointers(std::vector<std::string>& texts)
{
    std::vector<char*> result;
    for (std::string& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

} // namespace

Client::Client(const std::vector<std::string>& command, Probe probe, Capture capture)
{
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        fail(errno, "socketpair");
    channel_ = ends[0];
    if (capture == Capture::Lines)
        captured_ = memfd_create("output", MFD_CLOEXEC);
    auto arguments = command;
    auto environment = environmentOf(probe, ends[1]);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], ends[1]); // drops close-on-exec
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    if (captured_ >= 0)
        posix_spawn_file_actions_adddup2(&actions, captured_, STDOUT_FILENO);
    startTime_ = now();
    const int error = posix_spawn(&pid_, command.front().c_str(), &actions, nullptr,
        pointers(arguments).data(), pointers(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (error == 0)
        return;
    close(channel_);
    fail(error, command.front().c_str());
}

Client::~Client()
{
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    if (captured_ >= 0)
        close(captured_);
    close(channel_);
}

void Client::send(const Command& command) const
{
    if (::send(channel_, &command, sizeof command, MSG_NOSIGNAL) != sizeof command)
        fail(errno, "the program has ended");
}

std::optional<Event> Client::next(std::chrono::milliseconds limit) const
{
    pollfd waiting{.fd = channel_, .events = POLLIN, .revents = 0};
    if (poll(&waiting, 1, static_cast<int>(limit.count())) <= 0)
        return std::nullopt;
    Event event;
    if (recv(channel_, &event, sizeof event, 0) != sizeof event)
        throw std::runtime_error("the program has ended");
    return event;
}

int64_t Client::await(Moment moment) const
{
    while (const auto event = next(kPatience))
        if (event->moment == moment)
            return event->time;
    throw std::runtime_error("the program does not respond");
}

void Client::discardEvents() const
{
    while (next(std::chrono::milliseconds::zero())) { }
}

void Client::settle() const
{
    while (next(kQuiet)) { }
}

void Client::endInput()
{
    shutdown(channel_, SHUT_WR);
    static_cast<void>(awaitEnd());
}

void Client::interrupt()
{
    kill(pid_, SIGINT);
    static_cast<void>(awaitEnd());
}

int64_t Client::awaitEnd()
{
    int status = -1;
    waitpid(pid_, &status, 0);
    const int64_t time = now();
    pid_ = -1;
    if (status != 0)
        throw std::runtime_error("the program has failed");
    return time;
}

size_t Client::lines() const
{
    std::array<char, 4096> buffer{};
    size_t count = 0;
    off_t at = 0;
    for (ssize_t size = 0; (size = pread(captured_, buffer.data(), buffer.size(), at)) > 0;) {
        count += static_cast<size_t>(std::count(buffer.begin(), buffer.begin() + size, '\n'));
        at += size;
    }
    return count;
}

void Client::awaitLines(size_t count) const
{
    const auto limit = std::chrono::steady_clock::now() + kPatience;
    while (lines() < count) {
        if (std::chrono::steady_clock::now() > limit)
            throw std::runtime_error("the program does not print the lines");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

int64_t Client::cpuTime() const
{
    clockid_t clock = 0;
    timespec time{};
    if (const int error = clock_getcpuclockid(pid_, &clock))
        fail(error, "clock_getcpuclockid");
    clock_gettime(clock, &time);
    return int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

size_t Client::residentNow() const
{
    std::ifstream file("/proc/" + std::to_string(pid_) + "/smaps_rollup");
    for (std::string word; file >> word;)
        if (size_t kibibytes = 0; word == "Rss:" && file >> kibibytes)
            return kibibytes * 1024;
    throw std::runtime_error("no resident size in smaps_rollup");
}

size_t Client::residentBytes() const
{
    constexpr int unchangedTimes = 5;
    size_t last = residentNow();
    for (int unchanged = 0; unchanged < unchangedTimes;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        const size_t size = residentNow();
        unchanged = size == last ? unchanged + 1 : 0;
        last = size;
    }
    return last;
}

} // namespace bench
