#include "tools/ctl/trace/trace_server.h"

#include "tools/ctl/calls/trace_message.h"
#include "tools/ctl/cli/failure.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>

namespace fs = std::filesystem;

namespace ctl {
namespace {

constexpr int kPauseMs = 10;     // between two times of receiving
constexpr int kRestLimit = 4096; // messages; more than the buffer of a socket holds
constexpr const char* kSocketName = "socket";

[[noreturn]] void fail(const std::string& what)
{
    throw Failure(kNoAccess, what + ": " + std::generic_category().message(errno));
}

bool fits(const fs::path& socket)
{
    return socket.native().size() < sizeof sockaddr_un::sun_path;
}

fs::path makeDirectory()
{
    errno = ENOENT;
    for (const char* const variable : {"XDG_RUNTIME_DIR", "TMPDIR", ""}) {
        const char* const value = *variable ? std::getenv(variable) : "/tmp";
        if (!value || !*value)
            continue;
        // The program may be in another directory when it connects.
        std::string name = fs::absolute(value) / "kelprobe-trace.XXXXXX";
        if (fits(fs::path(name) / kSocketName) && mkdtemp(name.data()))
            return name;
    }
    fail("no directory for a socket can be made in /tmp");
}

UniqueFd listenOn(const fs::path& path)
{
    UniqueFd listener(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.native().size());
    if (bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0
        || listen(listener.get(), SOMAXCONN) != 0)
        fail(path.string());
    return listener;
}

} // namespace

TraceServer::TraceServer()
    : directory_(makeDirectory())
    , buffer_(sizeof(trace_header) + TRACE_MAX_PATH + TRACE_MAX_DATA)
{
    listener_ = listenOn(socketPath());
}

TraceServer::~TraceServer()
{
    std::error_code ignored;
    fs::remove_all(directory_, ignored);
}

fs::path TraceServer::socketPath() const
{
    return directory_ / kSocketName;
}

void TraceServer::receiveUntilReadable(int other, const Callback& callback)
{
    pollfd signal{other, POLLIN, 0};
    while (signal.revents == 0) {
        (void)receive(signal, -1, callback);
        while (signal.revents == 0 && receive(signal, 0, callback)) { }
        // The next messages are received together: to wake this process for each of them would
        // delay the calls that send them.
        if (signal.revents == 0)
            (void)::poll(&signal, 1, kPauseMs);
    }
}

void TraceServer::receiveRest(const Callback& callback)
{
    pollfd none{-1, POLLIN, 0};
    for (int i = 0; i < kRestLimit && receive(none, 0, callback); ++i) { }
}

bool TraceServer::isConnected() const
{
    return std::any_of(connections_.begin(), connections_.end(),
        [](const Connection& connection) { return connection.used; });
}

bool TraceServer::receive(pollfd& other, int milliseconds, const Callback& callback)
{
    std::vector<pollfd> entries{{full_ ? -1 : listener_.get(), POLLIN, 0}, other};
    for (const Connection& connection : connections_)
        entries.push_back({connection.socket.get(), POLLIN, 0});
    const int ready = ::poll(entries.data(), entries.size(), milliseconds);
    other.revents = entries[1].revents;
    if (ready <= 0)
        return false;
    std::vector<Connection> open;
    for (size_t i = 0; i < connections_.size(); ++i) {
        if (entries[i + 2].revents == 0 || receive(connections_[i], callback))
            open.push_back(std::move(connections_[i]));
    }
    full_ = full_ && open.size() == connections_.size();
    connections_ = std::move(open);
    accept();
    return true;
}

void TraceServer::accept()
{
    for (;;) {
        UniqueFd connection(
            accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (connection.get() < 0) {
            full_ = errno == EMFILE || errno == ENFILE;
            return;
        }
        connections_.push_back({std::move(connection)});
    }
}

bool TraceServer::receive(Connection& connection, const Callback& callback)
{
    const ssize_t size = recv(connection.socket.get(), buffer_.data(), buffer_.size(), 0);
    if (size < 0)
        return errno == EAGAIN || errno == EINTR;
    if (size == 0)
        return false;
    const auto call = parseTraceMessage({buffer_.data(), static_cast<size_t>(size)});
    if (!call)
        return false;
    connection.used = true;
    callback(*call);
    return true;
}

} // namespace ctl
