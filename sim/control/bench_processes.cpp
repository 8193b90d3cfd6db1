#include "sim/control/bench_processes.h"

#include "sim/bus/file_descriptor.h"
#include "sim/control/process_stat.h"

#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace sim {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kKillLimit{2000}; // only a process that the kernel holds up takes long

bool isStartedWith(const fs::path& process, const std::string& variable)
{
    const std::string environment = contentOf(process / "environ");
    return ('\0' + environment).find('\0' + variable + '\0') != std::string::npos;
}

// The process stays the same one until the descriptor is closed, even if its number is used again.
FileDescriptor openProcess(pid_t pid)
{
    return FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
}

// This process and its ancestors. A shell that was started on a dead bench may start the next one.
std::set<pid_t> sparedProcesses()
{
    std::set<pid_t> spared;
    for (std::optional<pid_t> pid = getpid(); pid && spared.insert(*pid).second;) {
        const std::optional<ProcessStat> stat = statOf(*pid);
        pid = stat ? std::optional(stat->parent) : std::nullopt;
    }
    return spared;
}

bool descendsFromThis(pid_t pid)
{
    std::set<pid_t> seen; // parents may change meanwhile
    while (pid > 1 && pid != getpid() && seen.insert(pid).second)
        pid = statOf(pid).value_or(ProcessStat{}).parent;
    return pid == getpid();
}

bool isOneOf(const BenchProcesses& processes, pid_t pid)
{
    const std::optional<ProcessStat> stat = statOf(pid);
    const std::string variable = std::string(kSocketVariable) + '=' + processes.socket.native();
    return stat && !stat->ended
        && ((processes.group && processes.group->contains(*stat))
            || (processes.descendants && descendsFromThis(pid))
            || isStartedWith(fs::path("/proc") / std::to_string(pid), variable));
}

// Returns those to which it has sent the signal.
std::vector<FileDescriptor> signalAll(
    int signal, const BenchProcesses& processes, const std::set<pid_t>& spared)
{
    std::vector<FileDescriptor> found;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator("/proc", ignored)) {
        const std::string name = entry.path().filename();
        pid_t pid = 0;
        if (std::from_chars(name.data(), name.data() + name.size(), pid).ec != std::errc()
            || spared.contains(pid))
            continue;
        FileDescriptor process = openProcess(pid);
        if (process.get() >= 0 && isOneOf(processes, pid)
            && syscall(SYS_pidfd_send_signal, process.get(), signal, nullptr, 0) == 0)
            found.push_back(std::move(process));
    }
    return found;
}

void reapChildren()
{
    while (waitpid(-1, nullptr, WNOHANG) > 0) { }
}

// A signal to this process does not shorten the wait.
bool waitForEnd(const FileDescriptor& process, Clock::time_point deadline)
{
    pollfd end{process.get(), POLLIN, 0};
    int ready = 0;
    do {
        const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
        ready = poll(&end, 1, static_cast<int>(std::max<milliseconds::rep>(left.count(), 0)));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

// False if one of them has not ended in this time.
bool waitForEnd(const std::vector<FileDescriptor>& processes, milliseconds limit)
{
    const auto deadline = Clock::now() + limit;
    return std::ranges::all_of(processes,
        [deadline](const FileDescriptor& process) { return waitForEnd(process, deadline); });
}

} // namespace

void endProcesses(const BenchProcesses& processes, milliseconds grace)
{
    constexpr int kTries = 100; // a process may start others until it is killed
    const std::set<pid_t> spared = sparedProcesses();
    reapChildren();
    if (grace > milliseconds(0))
        (void)waitForEnd(signalAll(SIGTERM, processes, spared), grace);
    for (int i = 0; i < kTries; ++i) {
        reapChildren();
        const std::vector<FileDescriptor> killed = signalAll(SIGKILL, processes, spared);
        if (killed.empty() || !waitForEnd(killed, kKillLimit))
            return;
    }
}

} // namespace sim
