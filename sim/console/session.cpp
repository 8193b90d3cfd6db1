#include "sim/console/session.h"

#include "sim/console/client_process.h"
#include "sim/console/console.h"
#include "sim/console/event_source.h"
#include "sim/console/line_reader.h"
#include "sim/console/preload_libraries.h"

#include <glib-unix.h>
#include <sys/signalfd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace sim {
namespace {

constexpr auto kReadable = static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR);

// Signals that were ignored when this process started, as by nohup, stay ignored.
bool isIgnored(int signal)
{
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// Returns a signalfd for the signals that end a session. g_unix_signal_add() does not take SIGQUIT.
FileDescriptor blockEndingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP})
        if (!isIgnored(signal))
            sigaddset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return FileDescriptor(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

// umockdev logs a GLib error, which ends the process, when it cannot write a file.
void printMessage(const gchar* domain, GLogLevelFlags level, const gchar* message, gpointer)
{
    if (!(level & G_LOG_LEVEL_ERROR)) {
        g_log_default_handler(domain, level, message, nullptr);
        return;
    }
    fprintf(stderr, "kelprobe-sim: %s\n", message);
    _exit(EXIT_FAILURE); // GLib would raise SIGTRAP
}

class Session {
public:
    Session(Console& console, const FileDescriptor& signals)
        : input_([&console](std::string_view line) { console.execute(line); })
        , signals_(signals)
    {
    }

    // The program has ended when this returns, because the devices are removed afterwards.
    int run(char* const* command, const std::string& libraries)
    {
        const ClientProcess client(command, libraries, [this](int status) { end(status); });
        const EventSource input(g_unix_fd_add(STDIN_FILENO, kReadable, onInput, this));
        const EventSource signal(g_unix_fd_add(signals_.get(), kReadable, onSignal, this));
        while (!status_)
            g_main_context_iteration(nullptr, TRUE);
        return *status_;
    }

private:
    static gboolean onInput(int file, GIOCondition, gpointer self)
    {
        return static_cast<Session*>(self)->readInput(file) ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
    }

    static gboolean onSignal(int file, GIOCondition, gpointer self)
    {
        signalfd_siginfo info = {};
        if (read(file, &info, sizeof info) == sizeof info)
            static_cast<Session*>(self)->end(128 + static_cast<int>(info.ssi_signo));
        return G_SOURCE_CONTINUE;
    }

    // False at the end of input, which does not end the program.
    bool readInput(int file)
    {
        std::array<char, 4096> buffer;
        const ssize_t size = read(file, buffer.data(), buffer.size());
        if (size > 0)
            input_.add({buffer.data(), static_cast<size_t>(size)});
        else if (size == 0 || (errno != EAGAIN && errno != EINTR)) {
            input_.finish();
            return false;
        }
        return true;
    }

    void end(int status)
    {
        if (!status_) // after a signal to this process it is already set
            status_ = status;
    }

    LineReader input_;
    const FileDescriptor& signals_;
    std::optional<int> status_;
};

} // namespace

int runSession(std::span<const Profile* const> profiles, char* const* command)
{
    const FileDescriptor signals = blockEndingSignals();
    std::signal(SIGPIPE, SIG_IGN); // a closed output must not end this process before the program
    std::signal(SIGCHLD, SIG_DFL); // the parent may have left it ignored
    g_log_set_default_handler(printMessage, nullptr);
    UsbBus bus;
    Transcript transcript(profiles.size());
    std::list<ConsoleDevice> devices;
    // The last profile first, because the system lists the newest device first.
    for (size_t number = profiles.size(); number > 0; --number)
        devices.emplace_front(bus, profiles[number - 1]->info, number, transcript);
    Console console(devices);
    try {
        return Session(console, signals).run(command, preloadLibraries(bus.directory()));
    } catch (const ClientStartError& error) {
        fprintf(stderr, "kelprobe-sim: %s\n", error.what());
        return error.reason == ClientStartError::Reason::kNotFound ? 127 : 126;
    }
}

} // namespace sim
