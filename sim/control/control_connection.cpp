#include "sim/control/control_connection.h"

#include "sim/bench/json_line.h"

#include <array>
#include <utility>

namespace sim {
namespace {

constexpr size_t kChunk = 4096; // read at a time, so that no client delays the others

// While as much waits for a client, its commands are not read.
constexpr size_t kEnoughWaiting = 64 * size_t{1024};

bool wouldBlock(GError* error)
{
    const bool result = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_WOULD_BLOCK);
    g_clear_error(&error);
    return result;
}

constexpr GIOCondition combined(GIOCondition a, GIOCondition b)
{
    return static_cast<GIOCondition>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}

constexpr bool has(GIOCondition conditions, GIOCondition one)
{
    return (static_cast<unsigned>(conditions) & static_cast<unsigned>(one)) != 0;
}

} // namespace

ControlConnection::ControlConnection(
    Bench& bench, GSocketConnection* connection, std::function<void()> onClose)
    : connection_(G_SOCKET_CONNECTION(g_object_ref(connection)))
    , socket_(g_socket_connection_get_socket(connection))
    , onClose_(std::move(onClose))
    , conversation_(bench, *this)
    , lines_([this](std::string_view line) { addLine(line); })
{
    g_socket_set_blocking(socket_, FALSE);
    watch();
}

ControlConnection::~ControlConnection()
{
    source_.reset();
    g_io_stream_close(G_IO_STREAM(connection_), nullptr, nullptr);
    g_object_unref(connection_);
}

void ControlConnection::send(const Json::Value& object)
{
    if (closed_)
        return;
    output_ += jsonLine(object) + '\n';
    write();
    if (output_.size() > kMaxWaiting)
        close();
    else
        watch();
}

void ControlConnection::addLine(std::string_view line)
{
    if (ended_ || closed_)
        return;
    if (line.size() > LineReader::kMaxLine)
        refuse("the line is too long");
    else if (!g_utf8_validate(line.data(), static_cast<gssize>(line.size()), nullptr))
        refuse("the line is not text in UTF-8");
    else
        conversation_.add(line);
}

void ControlConnection::refuse(const std::string& error)
{
    Json::Value object;
    object["status"] = kNotUnderstood;
    object["error"] = error;
    send(object);
    ended_ = true;
}

bool ControlConnection::handle(GIOCondition condition)
{
    if (has(condition, G_IO_OUT))
        write();
    if (has(condition, combined(G_IO_IN, combined(G_IO_HUP, G_IO_ERR)))) {
        if (has(watched_, G_IO_IN))
            read();
        if ((ended_ || !has(watched_, G_IO_IN)) && has(condition, combined(G_IO_HUP, G_IO_ERR)))
            close(); // nobody reads the answers
    }
    if (ended_ && !conversation_.waits() && output_.empty())
        close();
    watch();
    return G_SOURCE_CONTINUE;
}

void ControlConnection::read()
{
    std::array<char, kChunk> buffer;
    GError* error = nullptr;
    const gssize size = g_socket_receive(socket_, buffer.data(), buffer.size(), nullptr, &error);
    if (size < 0) {
        if (!wouldBlock(error))
            close();
        return;
    }
    lines_.add({buffer.data(), static_cast<size_t>(size)});
    if (lines_.isTooLong())
        refuse("the line is too long");
    if (size == 0) {
        conversation_.endStream();
        ended_ = true;
    }
}

void ControlConnection::write()
{
    while (!closed_ && !output_.empty()) {
        GError* error = nullptr;
        const gssize size = g_socket_send(socket_, output_.data(), output_.size(), nullptr, &error);
        if (size < 0) {
            if (!wouldBlock(error))
                close();
            return;
        }
        output_.erase(0, static_cast<size_t>(size));
    }
}

// Waits for what can be handled now. Without a condition, GLib still reports the end.
void ControlConnection::watch()
{
    if (closed_)
        return;
    auto wanted = GIOCondition{};
    if (!ended_ && !conversation_.waits() && output_.size() < kEnoughWaiting)
        wanted = G_IO_IN;
    if (!output_.empty() || (ended_ && !conversation_.waits()))
        wanted = combined(wanted, G_IO_OUT); // at the end, to close
    if (source_ && wanted == watched_)
        return;
    watched_ = wanted;
    GSource* const source = g_socket_create_source(socket_, wanted, nullptr);
    const GSocketSourceFunc callback = [](GSocket*, GIOCondition condition, gpointer self) {
        return static_cast<gboolean>(static_cast<ControlConnection*>(self)->handle(condition));
    };
    g_source_set_callback(source, G_SOURCE_FUNC(callback), this, nullptr);
    g_source_attach(source, nullptr);
    source_.emplace(source);
}

void ControlConnection::close()
{
    if (std::exchange(closed_, true))
        return;
    source_.reset();
    output_.clear();
    onClose_();
}

} // namespace sim
