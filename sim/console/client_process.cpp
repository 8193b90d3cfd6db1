#include "sim/console/client_process.h"

#include "sim/control/bench_processes.h"
#include "tools/preload/preload_library.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <memory>
#include <utility>

namespace sim {
namespace {

constexpr guint kTerminationLimitMs = 2000;

struct StringsFree {
    void operator()(gchar** strings) const { g_strfreev(strings); }
};
using Environment = std::unique_ptr<gchar*, StringsFree>;

Environment environmentWith(const ClientOptions& options)
{
    const std::string libraries = preload::appended(options.libraries);
    gchar** environment = g_environ_setenv(g_get_environ(), "LD_PRELOAD", libraries.c_str(), TRUE);
    return Environment(
        g_environ_setenv(environment, kSocketVariable, options.socket.c_str(), TRUE));
}

struct ChildSetup {
    pid_t parent;
    bool takesTerminal;
};

// Runs in the child between fork() and exec(), so it may call only async-signal-safe functions.
void prepareChild(gpointer data)
{
    const auto& setup = *static_cast<const ChildSetup*>(data);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != setup.parent)
        _exit(EXIT_FAILURE); // it was killed before
    setpgid(0, 0);
    if (setup.takesTerminal) {
        std::signal(SIGTTOU, SIG_IGN);
        tcsetpgrp(STDIN_FILENO, getpid());
    }
    for (int signal = 1; signal < NSIG; ++signal)
        if (signal != SIGHUP) // ignored only under nohup, which is meant for the program, too
            std::signal(signal, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

std::vector<char*> argumentVector(const std::vector<std::string>& command)
{
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str())); // g_spawn_async() only reads them
    arguments.push_back(nullptr);
    return arguments;
}

// The program itself is reaped by GLib.
void reapOthers(pid_t program)
{
    siginfo_t info = {};
    while (waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0
        && info.si_pid != program) {
        waitpid(info.si_pid, nullptr, 0);
        info = {};
    }
}

} // namespace

ClientProcess::ClientProcess(
    const std::vector<std::string>& command, const ClientOptions& options, EndCallback onEnd)
    : onEnd_(std::move(onEnd))
    , socket_(options.socket)
    , hasTerminal_(options.takesInput && isatty(STDIN_FILENO))
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    if (hasTerminal_)
        std::signal(SIGTTOU, SIG_IGN); // sent when a background group calls tcsetpgrp()
    // GLib by default opens /dev/null as the child's standard input.
    unsigned flags = G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD;
    flags |= G_SPAWN_LEAVE_DESCRIPTORS_OPEN;
    if (options.takesInput)
        flags |= G_SPAWN_CHILD_INHERITS_STDIN;
    ChildSetup setup{getpid(), hasTerminal_};
    GError* error = nullptr;
    if (!g_spawn_async(nullptr, argumentVector(command).data(), environmentWith(options).get(),
            static_cast<GSpawnFlags>(flags), prepareChild, &setup, &pid_, &error)) {
        using Reason = ClientStartError::Reason;
        const bool notFound = g_error_matches(error, G_SPAWN_ERROR, G_SPAWN_ERROR_NOENT);
        const std::string what = error->message;
        g_error_free(error);
        throw ClientStartError(notFound ? Reason::kNotFound : Reason::kCannotRun, what);
    }
    g_child_watch_add(
        pid_,
        [](GPid, int waitStatus, gpointer self) {
            static_cast<ClientProcess*>(self)->handleEnd(waitStatus);
        },
        this);
    group_ = ProcessGroup::ledBy(pid_);
    if (group_)
        group_->save(options.groupFile);
    constexpr guint kCheckMs = 200;
    checks_.emplace(g_timeout_add(
        kCheckMs,
        [](gpointer self) -> gboolean {
            static_cast<ClientProcess*>(self)->check();
            return G_SOURCE_CONTINUE;
        },
        this));
}

// The group is signalled even if its first process has ended: it may have other processes.
ClientProcess::~ClientProcess()
{
    kill(-pid_, SIGTERM);
    if (!waitForEnd(kTerminationLimitMs)) {
        kill(-pid_, SIGKILL);
        while (!ended_)
            g_main_context_iteration(nullptr, TRUE);
    }
    endProcesses({.socket = socket_, .group = group_, .descendants = true},
        std::chrono::milliseconds(kTerminationLimitMs));
    if (hasTerminal_)
        tcsetpgrp(STDIN_FILENO, getpgrp());
}

void ClientProcess::check()
{
    reapOthers(pid_);
    siginfo_t info = {};
    if (hasTerminal_ && waitid(P_PID, static_cast<id_t>(pid_), &info, WSTOPPED | WNOHANG) == 0
        && info.si_pid == pid_)
        passStop();
}

// The shell knows only our process group. It may have given the terminal to that without a signal,
// after a program in the background was stopped because it reads; then nothing stops.
void ClientProcess::passStop() const
{
    const pid_t foreground = tcgetpgrp(STDIN_FILENO);
    if (foreground == pid_)
        tcsetpgrp(STDIN_FILENO, getpgrp());
    if (foreground != getpgrp())
        kill(0, SIGTSTP); // returns after SIGCONT; at once if there is no shell that would send it
    if (tcgetpgrp(STDIN_FILENO) == getpgrp())
        tcsetpgrp(STDIN_FILENO, pid_);
    kill(-pid_, SIGCONT);
}

void ClientProcess::handleEnd(int waitStatus)
{
    ended_ = true;
    onEnd_(WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : 128 + WTERMSIG(waitStatus));
}

bool ClientProcess::waitForEnd(guint milliseconds)
{
    bool timedOut = false;
    const EventSource timer(g_timeout_add(
        milliseconds,
        [](gpointer flag) -> gboolean {
            *static_cast<bool*>(flag) = true;
            return G_SOURCE_REMOVE;
        },
        &timedOut));
    while (!ended_ && !timedOut)
        g_main_context_iteration(nullptr, TRUE);
    return ended_;
}

} // namespace sim
