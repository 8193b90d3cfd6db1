#include "sim/control/control_server.h"

#include "sim/bench/json_line.h"

#include <gio/gunixsocketaddress.h>

#include <stdexcept>

namespace sim {
namespace {

void refuse(GSocketConnection* connection)
{
    Json::Value object;
    object["status"] = kTooManyClients;
    object["error"] = "the bench has too many clients";
    const std::string line = jsonLine(object) + '\n';
    GSocket* const socket = g_socket_connection_get_socket(connection);
    g_socket_set_blocking(socket, FALSE);
    g_socket_send(socket, line.data(), line.size(), nullptr, nullptr);
    g_io_stream_close(G_IO_STREAM(connection), nullptr, nullptr);
}

} // namespace

ControlServer::ControlServer(Bench& bench, const std::filesystem::path& socket)
    : bench_(bench)
    , service_(g_socket_service_new())
{
    constexpr int kBacklog = 256; // a script may start many commands at once
    g_socket_listener_set_backlog(G_SOCKET_LISTENER(service_), kBacklog);
    GSocketAddress* const address = g_unix_socket_address_new(socket.c_str());
    GError* error = nullptr;
    const bool added = g_socket_listener_add_address(G_SOCKET_LISTENER(service_), address,
        G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_DEFAULT, nullptr, nullptr, &error);
    g_object_unref(address);
    if (!added) {
        const std::string text = socket.native() + ": " + error->message;
        g_error_free(error);
        g_object_unref(service_);
        throw std::runtime_error(text);
    }
    const auto incoming
        = +[](GSocketService*, GSocketConnection* connection, GObject*, gpointer self) -> gboolean {
        static_cast<ControlServer*>(self)->accept(connection);
        return TRUE;
    };
    g_signal_connect(service_, "incoming", G_CALLBACK(incoming), this);
}

ControlServer::~ControlServer()
{
    if (removal_)
        g_source_remove(removal_);
    g_socket_service_stop(service_);
    g_socket_listener_close(G_SOCKET_LISTENER(service_));
    g_object_unref(service_);
}

void ControlServer::accept(GSocketConnection* connection)
{
    removeClosed();
    if (connections_.size() >= kMaxClients)
        return refuse(connection);
    connections_.emplace_back(bench_, connection, [this] {
        if (removal_)
            return;
        removal_ = g_idle_add(
            [](gpointer self) -> gboolean {
                static_cast<ControlServer*>(self)->removal_ = 0;
                static_cast<ControlServer*>(self)->removeClosed();
                return G_SOURCE_REMOVE;
            },
            this);
    });
}

void ControlServer::removeClosed()
{
    connections_.remove_if([](const ControlConnection& client) { return client.isClosed(); });
}

} // namespace sim
