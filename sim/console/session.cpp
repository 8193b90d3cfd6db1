#include "sim/console/session.h"

#include "sim/console/client_process.h"
#include "sim/console/end_signals.h"
#include "sim/console/preload_libraries.h"
#include "sim/console/standard_input.h"
#include "sim/console/transcript.h"
#include "sim/control/bench_source.h"
#include "sim/control/control_server.h"
#include "sim/control/run_directory.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace sim {
namespace {

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
        : signals_([this](int signal) { end(128 + signal); })
        , bus_(makeBus(directory_))
        , bench_(*bus_, queue_, options.profiles)
        , transcript_(bench_)
        , source_(bench_)
        , server_(bench_, directory_.socket())
        , clientOptions_{
              preloadLibraries(directory_.path()), directory_.socket(), options.programTakesInput}
    {
        bench_.onQuit = [this] { end(EXIT_SUCCESS); };
        if (options.replay)
            startReplay(*options.replay);
        if (!options.programTakesInput)
            input_.emplace(bench_);
    }

    int run(const std::vector<std::string>& program)
    {
        runProgram(program);
        finish();
        if (replay_)
            replay_->end();
        return differs_ ? kDiffers : *status_;
    }

private:
    static constexpr int kDiffers = 1;

    void end(int status)
    {
        if (!status_) // after a signal to this process it is already set
            status_ = status;
    }

    // The program has ended when this returns, because the devices are removed afterwards.
    void runProgram(const std::vector<std::string>& program)
    {
        const ClientProcess client(program, clientOptions_, [this](int status) { end(status); });
        while (!status_)
            g_main_context_iteration(nullptr, TRUE);
    }

    // Handles what happened until the end of the program: events, and reports of our preload
    // library on the socket.
    void finish()
    {
        constexpr int kMost = 10'000; // a client of the socket may go on
        for (int i = 0; i < kMost && g_main_context_iteration(nullptr, FALSE); ++i) { }
        bench_.tick();
    }

    void startReplay(const ReplayedDevice& replayed)
    {
        const auto onDifference = [this](const std::string& explanation) {
            fprintf(stderr, "kelprobe-sim: %s\n", explanation.c_str());
            differs_ = true;
            end(kDiffers);
        };
        replay_.emplace(bench_, bench_.device(1), replayed.reports, replayed.options, onDifference);
        bench_.isPlaying = [this] { return replay_->isPlaying(); };
    }

    std::optional<int> status_;
    bool differs_ = false;
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
