#include "sim/console/client_process.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace sim {
namespace {

constexpr int kPatienceMs = 2000;

class FileActions {
public:
    FileActions()
    {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions_, STDERR_FILENO, STDOUT_FILENO);
    }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

// A group of its own, and signals as if we had not touched them.
class Attributes {
public:
    Attributes()
    {
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

} // namespace

std::string preloadList()
{
    constexpr const char* kUmockdev = "libumockdev-preload.so.0";
    const auto own
        = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "kelprobe-sim-preload.so";
    if (!exists(own))
        throw std::runtime_error("missing library: " + own.native());
    void* const library = dlopen(kUmockdev, RTLD_LAZY | RTLD_LOCAL);
    if (!library)
        throw std::runtime_error(
            std::string("missing library: ") + kUmockdev + " (Debian package umockdev)");
    dlclose(library);
    const char* const others = getenv("LD_PRELOAD");
    return (others && *others ? std::string(others) + ":" : "") + own.native() + ":" + kUmockdev;
}

ClientProcess::ClientProcess(char* const* command)
{
    setenv("LD_PRELOAD", preloadList().c_str(), 1);
    const int error = posix_spawnp(
        &pid_, command[0], FileActions().get(), Attributes().get(), command, environ);
    unsetenv("LD_PRELOAD");
    if (error)
        throw std::system_error(error, std::generic_category(), command[0]);
    // glibc 2.36 has a wrapper, but C++ cannot link it.
    pidFd_ = FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, pid_, 0)));
}

ClientProcess::~ClientProcess()
{
    if (pid_ < 0)
        return;
    kill(-pid_, SIGTERM);
    if (waited_)
        return;
    if (!endsWithin(kPatienceMs))
        kill(-pid_, SIGKILL);
    wait();
}

bool ClientProcess::endsWithin(int milliseconds) const
{
    pollfd end = {pidFd_.get(), POLLIN, 0};
    return poll(&end, 1, milliseconds) > 0;
}

int ClientProcess::wait()
{
    int status = 0;
    while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) { }
    waited_ = true;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace sim
