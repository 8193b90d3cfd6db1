#include "sim/console/session.h"

#include "sim/console/client_process.h"
#include "sim/console/console.h"

#include <poll.h>
#include <sys/signalfd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <system_error>

namespace sim {
namespace {

constexpr size_t kMaxLine = 256 * size_t{1024}; // "raw" with the longest report there can be

// To be made before any thread, so that no thread takes the signals.
FileDescriptor blockEndingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN); // a reader that goes away must not end us before the program
    return FileDescriptor(signalfd(-1, &signals, SFD_CLOEXEC));
}

class LineReader {
public:
    // Hands each complete line to `obey`, and what follows the last. False at the end of input.
    template <class Obey>
    bool read(Obey obey)
    {
        std::array<char, 4096> buffer;
        const ssize_t size = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (size <= 0) {
            if (!text_.empty())
                obey(std::string_view(text_));
            return false;
        }
        text_.append(buffer.data(), static_cast<size_t>(size));
        size_t begin = 0;
        for (size_t end; (end = text_.find('\n', begin)) != text_.npos; begin = end + 1)
            obey(std::string_view(text_).substr(begin, end - begin));
        text_.erase(0, begin);
        if (text_.size() > kMaxLine)
            text_.clear();
        return true;
    }

private:
    std::string text_;
};

int serve(Console& console, ClientProcess& client, const FileDescriptor& signals)
{
    LineReader input;
    enum { kClient, kSignal, kInput };
    std::array<pollfd, 3> files = {{
        {client.pidFd(), POLLIN, 0},
        {signals.get(), POLLIN, 0},
        {STDIN_FILENO, POLLIN, 0},
    }};
    for (;;) {
        if (poll(files.data(), files.size(), -1) < 0)
            continue;
        if (files[kClient].revents)
            return client.wait();
        if (files[kSignal].revents) {
            signalfd_siginfo info = {};
            if (read(signals.get(), &info, sizeof info) == sizeof info)
                return 128 + static_cast<int>(info.ssi_signo);
        }
        const auto obey = [&](std::string_view line) { console.obey(line); };
        if (files[kInput].revents && !input.read(obey))
            files[kInput].fd = -1; // the program goes on
    }
}

} // namespace

int runSession(std::span<const Profile* const> profiles, char* const* command)
{
    const FileDescriptor signals = blockEndingSignals();
    UsbBus bus;
    Transcript transcript(profiles.size());
    std::list<Station> stations;
    // The last first, as the system lists the device plugged in last at the top.
    for (size_t number = profiles.size(); number > 0; --number)
        stations.emplace_front(bus, profiles[number - 1]->info, number, transcript);
    Console console(stations);
    try {
        ClientProcess client(command); // ends before the devices do: it could not live without
        return serve(console, client, signals);
    } catch (const std::system_error& error) {
        fprintf(stderr, "kelprobe-sim: %s\n", error.what());
        return error.code() == std::errc::no_such_file_or_directory ? 127 : 126;
    }
}

} // namespace sim
