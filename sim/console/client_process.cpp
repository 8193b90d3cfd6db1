#include "sim/console/client_process.h"

#include "sim/console/event_source.h"
#include "tools/preload/preload_library.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <memory>
#include <utility>

namespace sim {
namespace {

constexpr guint kTerminationLimitMs = 2000;

struct StringsFree {
    void operator()(gchar** strings) const { g_strfreev(strings); }
};
using Environment = std::unique_ptr<gchar*, StringsFree>;

Environment environmentWith(const std::string& libraries)
{
    const std::string all = preload::appended(libraries);
    return Environment(g_environ_setenv(g_get_environ(), "LD_PRELOAD", all.c_str(), TRUE));
}

// Runs in the child between fork() and exec(), so it may call only async-signal-safe functions.
void prepareChild(gpointer)
{
    setpgid(0, 0);
    for (int signal = 1; signal < NSIG; ++signal)
        if (signal != SIGHUP) // ignored only under nohup, which is meant for the program, too
            std::signal(signal, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

} // namespace

ClientProcess::ClientProcess(char* const* command, const std::string& libraries, EndCallback onEnd)
    : onEnd_(std::move(onEnd))
{
    // GLib by default opens /dev/null as the child's standard input.
    constexpr auto flags = static_cast<GSpawnFlags>(
        G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_LEAVE_DESCRIPTORS_OPEN);
    GError* error = nullptr;
    if (!g_spawn_async(nullptr, const_cast<gchar**>(command), environmentWith(libraries).get(),
            flags, prepareChild, nullptr, &pid_, &error)) {
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
}

// The group is signalled even if its first process has ended: it may have other processes.
ClientProcess::~ClientProcess()
{
    kill(-pid_, SIGTERM);
    if (waitForEnd(kTerminationLimitMs))
        return;
    kill(-pid_, SIGKILL);
    while (!ended_)
        g_main_context_iteration(nullptr, TRUE);
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
