// Receives the calls of traced programs.
#pragma once

#include "tools/ctl/cli/unique_fd.h"
#include "tools/ctl/traffic/call.h"

#include <filesystem>
#include <functional>
#include <poll.h>
#include <vector>

namespace ctl {

// A socket in a directory that only this user can enter, below XDG_RUNTIME_DIR or TMPDIR. Programs
// send and wait if their messages are not received. For one thread.
class TraceServer {
public:
    using Callback = std::function<void(const Call&)>;

    // Throws Failure.
    TraceServer();
    ~TraceServer(); // removes the directory; programs then go on without being traced
    TraceServer(const TraceServer&) = delete;
    TraceServer& operator=(const TraceServer&) = delete;

    [[nodiscard]] const std::filesystem::path& directory() const { return directory_; }
    [[nodiscard]] std::filesystem::path socketPath() const;

    // Calls back for each call of a program, in their order for each process, until `other` is
    // readable.
    void receiveUntilReadable(int other, const Callback& callback);

    // Calls back for the calls that were made until now, and perhaps for some later ones.
    void receiveRest(const Callback& callback);

    // Whether a process that has made calls is still running.
    [[nodiscard]] bool isConnected() const;

private:
    struct Connection {
        UniqueFd socket;
        bool used = false; // a call was received
    };

    // Waits for at most that long, negative for no limit, and receives one message from each
    // connection that has some. Sets `other.revents`. Returns whether anything happened.
    bool receive(pollfd& other, int milliseconds, const Callback& callback);
    // Returns false if the connection has ended or sends something else.
    [[nodiscard]] bool receive(Connection& connection, const Callback& callback);
    void accept();

    const std::filesystem::path directory_;
    UniqueFd listener_;
    std::vector<Connection> connections_;
    bool full_ = false; // no file can be opened until a connection ends; processes wait
    std::vector<uint8_t> buffer_;
};

} // namespace ctl
