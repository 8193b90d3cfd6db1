#include "sim/console/session.h"

#include "sim/console/client_process.h"
#include "sim/console/end_signals.h"
#include "sim/console/preload_libraries.h"
#include "sim/console/standard_input.h"
#include "sim/console/transcript.h"
#include "sim/control/bench_source.h"
#include "sim/control/control_server.h"
#include "sim/control/run_directory.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <system_error>

namespace sim {
namespace {

// umockdev logs a GLib error, which ends the process, when it cannot write a file, and a critical
// message for each client that is killed, which is usual here.
void printMessage(const gchar* domain, GLogLevelFlags level, const gchar* message, gpointer)
{
    if (level & G_LOG_LEVEL_ERROR) {
        fprintf(stderr, "kelprobe-sim: %s\n", message);
        _exit(EXIT_FAILURE); // GLib would raise SIGTRAP
    }
    if (!std::strstr(message, "Destroying IoctlClient with open stream"))
        g_log_default_handler(domain, level, message, nullptr);
}

// umockdev makes its directory below the first TMPDIR that GLib has seen.
std::unique_ptr<UsbBus> makeBus(const RunDirectory& directory)
{
    const char* const inherited = std::getenv("TMPDIR");
    const std::optional<std::string> previous
        = inherited ? std::optional<std::string>(inherited) : std::nullopt;
    setenv("TMPDIR", directory.path().c_str(), 1);
    auto bus = std::make_unique<UsbBus>();
    if (previous)
        setenv("TMPDIR", previous->c_str(), 1); // the program's
    else
        unsetenv("TMPDIR");
    return bus;
}

class Session {
public:
    explicit Session(const SessionOptions& options)
        : signals_([this](int signal) { interrupt(128 + signal); })
        , bus_(makeBus(directory_))
        , bench_(*bus_, queue_, options.profiles)
        , transcript_(bench_, output_)
        , source_(bench_)
        , server_(bench_, directory_.socket())
        , clientOptions_{preloadLibraries(directory_.path()), directory_.socket(),
              directory_.group(), options.programTakesInput}
    {
        bench_.onQuit = [this] { interrupt(EXIT_SUCCESS); };
        bench_.outputIsFull = [this] { return output_.isFull() || errors_.isFull(); };
        if (options.replay)
            startReplay(*options.replay);
        if (!options.programTakesInput)
            input_.emplace(bench_, output_, errors_);
    }

    int run(const std::vector<std::string>& program)
    {
        runProgram(program);
        finish();
        if (replay_)
            replay_->end();
        return exitStatus();
    }

private:
    static constexpr int kFailed = 1; // the replay differs, or standard output failed

    void end(int status)
    {
        if (!status_) // after a signal to this process it is already set
            status_ = status;
    }

    // Ends the program although it has not ended by itself.
    void interrupt(int status)
    {
        interrupted_ = interrupted_ || !status_;
        end(status);
    }

    // The program has ended when this returns, because the devices are removed afterwards.
    void runProgram(const std::vector<std::string>& program)
    {
        const ClientProcess client(program, clientOptions_, [this](int status) { end(status); });
        while (!status_) {
            g_main_context_iteration(nullptr, TRUE);
            if (input_)
                input_->update();
        }
        input_.reset();
    }

    // Handles what happened until the end of the program: events, and reports of our preload
    // library on the socket.
    void finish()
    {
        constexpr std::chrono::milliseconds kLimit{500}; // a client of the socket may go on
        const auto deadline = std::chrono::steady_clock::now() + kLimit;
        bench_.outputIsFull = [] { return false; };
        while (g_main_context_iteration(nullptr, FALSE)
            && std::chrono::steady_clock::now() < deadline) { }
        bench_.tick();
    }

    // Prints what is left. A reader of standard output that has ended, as in `| head`, is no error.
    int exitStatus()
    {
        constexpr std::chrono::milliseconds kLimit{1000};
        output_.finish(kLimit);
        const int error = output_.error();
        const bool failed = error != 0 && error != EPIPE;
        if (failed)
            errors_.print(
                "kelprobe-sim: standard output: " + std::generic_category().message(error));
        errors_.finish(kLimit);
        if (differs_)
            return kFailed;
        return failed && *status_ == EXIT_SUCCESS ? kFailed : *status_;
    }

    void startReplay(const ReplayedDevice& replayed)
    {
        const auto onDifference = [this](const std::string& explanation) {
            if (interrupted_)
                return; // the program was not left to do what was recorded
            errors_.print("kelprobe-sim: " + explanation);
            differs_ = true;
            end(kFailed);
        };
        replay_.emplace(bench_, bench_.device(1), replayed.reports, replayed.options, onDifference);
        bench_.isPlaying = [this] { return replay_->isPlaying(); };
    }

    std::optional<int> status_;
    bool interrupted_ = false;
    bool differs_ = false;
    Output output_{STDOUT_FILENO};
    Output errors_{STDERR_FILENO};
    EndSignals signals_;
    const RunDirectory directory_;
    const std::unique_ptr<UsbBus> bus_;
    EventQueue queue_;
    Bench bench_;
    Transcript transcript_;
    BenchSource source_;
    ControlServer server_;
    std::optional<StandardInput> input_;
    std::optional<Replay> replay_;
    const ClientOptions clientOptions_;
};

} // namespace

int runSession(const SessionOptions& options)
{
    std::signal(SIGPIPE, SIG_IGN); // a closed output must not end this process before the program
    std::signal(SIGTTIN, SIG_IGN); // see StandardInput
    std::signal(SIGCHLD, SIG_DFL); // the parent may have left it ignored
    g_log_set_default_handler(printMessage, nullptr);
    removeDeadBenches();
    try {
        return Session(options).run(options.program);
    } catch (const ClientStartError& error) {
        fprintf(stderr, "kelprobe-sim: %s\n", error.what());
        return error.reason == ClientStartError::Reason::kNotFound ? 127 : 126;
    }
}

} // namespace sim
