#include "tools/ctl/trace/traced_program.h"

#include "tools/ctl/cli/failure.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <system_error>

namespace ctl {
namespace {

constexpr int kNotFound = 127;
constexpr int kCannotRun = 126;
constexpr int kSignalled = 128;

[[noreturn]] void fail(const char* what)
{
    throw Failure(kNoAccess, std::string(what) + ": " + std::generic_category().message(errno));
}

sigset_t handledSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number :
        {SIGALRM, SIGCHLD, SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGWINCH})
        sigaddset(&signals, number);
    return signals;
}

// In the child: returns only if the program cannot be run.
void run(char* const* command, const std::map<std::string, std::string>& environment,
    const sigset_t& inheritedMask)
{
    for (const auto& [name, value] : environment)
        setenv(name.c_str(), value.c_str(), 1);
    pthread_sigmask(SIG_SETMASK, &inheritedMask, nullptr);
    execvp(command[0], command);
}

// The errno of the child's exec(), 0 if it succeeded.
int execError(int fd)
{
    int error = 0;
    while (read(fd, &error, sizeof error) < 0 && errno == EINTR) { }
    return error;
}

// Files of this process itself are closed in programs that it starts; the others are inherited.
void releaseStandardStreams()
{
    const UniqueFd none(open("/dev/null", O_RDWR | O_CLOEXEC));
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO}) {
        const int flags = fcntl(fd, F_GETFD);
        if (flags >= 0 && !(flags & FD_CLOEXEC))
            dup2(none.get(), fd);
    }
}

// Whether the kernel has sent the signal to the program, too. If the terminal is closed, it sends
// SIGHUP only to the leader of the session. SIGALRM is from a timer of this process.
bool isSentToProgram(const signalfd_siginfo& signal)
{
    const bool isForThisProcess
        = signal.ssi_signo == SIGALRM || (signal.ssi_signo == SIGHUP && getsid(0) == getpid());
    return signal.ssi_code == SI_KERNEL && !isForThisProcess;
}

} // namespace

TracedProgram::TracedProgram()
{
    const sigset_t handled = handledSignals();
    pthread_sigmask(SIG_BLOCK, &handled, &inheritedMask_);
    signals_ = UniqueFd(signalfd(-1, &handled, SFD_CLOEXEC | SFD_NONBLOCK));
    if (signals_.get() < 0)
        fail("no signals can be received");
}

void TracedProgram::start(
    std::vector<std::string> command, const std::map<std::string, std::string>& environment)
{
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& word : command)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("no pipe");
    const UniqueFd readEnd(ends[0]);
    UniqueFd writeEnd(ends[1]);
    // If it stayed ignored, there would be no exit status.
    const auto inheritedAction = std::signal(SIGCHLD, SIG_DFL);
    pid_ = fork();
    if (pid_ < 0)
        fail(command[0].c_str());
    if (pid_ == 0) {
        std::signal(SIGCHLD, inheritedAction);
        run(arguments.data(), environment, inheritedMask_);
        const int error = errno;
        [[maybe_unused]] const ssize_t written = write(writeEnd.get(), &error, sizeof error);
        _exit(kCannotRun);
    }
    writeEnd = UniqueFd();
    if (const int error = execError(readEnd.get())) {
        waitpid(pid_, nullptr, 0);
        throw StartError{error == ENOENT ? kNotFound : kCannotRun,
            command[0] + ": " + std::generic_category().message(error)};
    }
    releaseStandardStreams();
}

bool TracedProgram::handleSignals()
{
    signalfd_siginfo signal{};
    bool ended = false;
    while (read(signals_.get(), &signal, sizeof signal) == sizeof signal) {
        if (signal.ssi_signo == SIGCHLD)
            ended = collect() || ended;
        else if (!ended && !isSentToProgram(signal))
            kill(pid_, static_cast<int>(signal.ssi_signo));
    }
    return ended;
}

bool TracedProgram::collect()
{
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) != pid_)
        return false;
    exitStatus_ = WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
    return true;
}

} // namespace ctl
