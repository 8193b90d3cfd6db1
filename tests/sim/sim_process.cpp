#include "sim_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <cstdlib>

namespace {

constexpr int kLimitMs = 10'000;

struct Pipe {
    Pipe()
    {
        std::array<int, 2> ends = {-1, -1};
        if (pipe2(ends.data(), O_CLOEXEC) == 0) {
            read = sim::FileDescriptor(ends[0]);
            write = sim::FileDescriptor(ends[1]);
        }
    }
    sim::FileDescriptor read;
    sim::FileDescriptor write;
};

} // namespace

SimProcess::SimProcess(const std::vector<std::string>& arguments, const std::string& directory)
{
    std::vector<std::string> words = {KELPROBE_SIM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    setenv("TMPDIR", directory.c_str(), 1);

    Pipe in;
    Pipe out;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in.read.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out.write.get(), STDOUT_FILENO);
    if (posix_spawn(&pid_, KELPROBE_SIM, &actions, nullptr, argv.data(), environ) != 0)
        pid_ = -1;
    posix_spawn_file_actions_destroy(&actions);
    input_ = std::move(in.write);
    output_ = std::move(out.read);
}

SimProcess::~SimProcess()
{
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        exitStatus();
    }
}

void SimProcess::command(const std::string& line)
{
    const std::string text = line + "\n";
    if (write(input_.get(), text.data(), text.size()) < 0)
        input_.reset();
}

std::optional<std::string> SimProcess::line()
{
    for (;;) {
        if (const size_t end = unread_.find('\n'); end != unread_.npos) {
            std::string first = unread_.substr(0, end);
            unread_.erase(0, end + 1);
            return first;
        }
        pollfd ready = {output_.get(), POLLIN, 0};
        std::array<char, 4096> buffer;
        const ssize_t size
            = poll(&ready, 1, kLimitMs) > 0 ? read(output_.get(), buffer.data(), buffer.size()) : 0;
        if (size <= 0)
            return std::nullopt;
        unread_.append(buffer.data(), static_cast<size_t>(size));
    }
}

std::string SimProcess::rest()
{
    std::string text;
    while (const auto next = line())
        text += *next + "\n";
    return text;
}

void SimProcess::signal(int number) const
{
    kill(pid_, number);
}

int SimProcess::exitStatus()
{
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
