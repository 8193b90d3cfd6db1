#include "sim/control/bench_processes.h"

#include "sim/bus/file_descriptor.h"

#include <poll.h>
#include <sys/syscall.h>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
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
    std::ifstream file(process / "environ", std::ios::binary);
    const std::string environment{std::istreambuf_iterator<char>(file), {}};
    return ('\0' + environment).find('\0' + variable + '\0') != std::string::npos;
}

// The process stays the same one until the descriptor is closed, even if its number is used again.
FileDescriptor openProcess(pid_t pid)
{
    return FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
}

// 0 if there is no such process.
pid_t parentOf(pid_t pid)
{
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string text{std::istreambuf_iterator<char>(file), {}};
    text.erase(0, text.rfind(')') + 1); // the name may contain anything
    char state = 0;
    pid_t parent = 0;
    std::istringstream(text) >> state >> parent;
    return parent;
}

// This process and its ancestors. A shell that was started on a dead bench may start the next one.
std::set<pid_t> sparedProcesses()
{
    std::set<pid_t> spared;
    for (pid_t pid = getpid(); pid > 0 && spared.insert(pid).second;)
        pid = parentOf(pid);
    return spared;
}

// Returns those to which it has sent the signal.
std::vector<FileDescriptor> signalAll(
    int signal, const std::string& variable, const std::set<pid_t>& spared)
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
        if (process.get() >= 0 && isStartedWith(entry.path(), variable)
            && syscall(SYS_pidfd_send_signal, process.get(), signal, nullptr, 0) == 0)
            found.push_back(std::move(process));
    }
    return found;
}

// False if one of them has not ended in this time.
bool waitForEnd(const std::vector<FileDescriptor>& processes, milliseconds limit)
{
    const auto deadline = Clock::now() + limit;
    return std::ranges::all_of(processes, [deadline](const FileDescriptor& process) {
        const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
        pollfd end{process.get(), POLLIN, 0};
        return poll(&end, 1, static_cast<int>(std::max<milliseconds::rep>(left.count(), 0))) > 0;
    });
}

} // namespace

void endProcessesOf(const fs::path& socket, milliseconds grace)
{
    constexpr int kTries = 100; // a process may start others until it is killed
    const std::set<pid_t> spared = sparedProcesses();
    const std::string variable = std::string(kSocketVariable) + '=' + socket.native();
    if (grace > milliseconds(0))
        (void)waitForEnd(signalAll(SIGTERM, variable, spared), grace);
    for (int i = 0; i < kTries; ++i) {
        const std::vector<FileDescriptor> killed = signalAll(SIGKILL, variable, spared);
        if (killed.empty() || !waitForEnd(killed, kKillLimit))
            return;
    }
}

} // namespace sim
