// The control socket of the bench.
#pragma once

#include "sim/control/control_connection.h"

#include <filesystem>
#include <list>

namespace sim {

// Serves clients from GLib's default main context, in whose thread the object must be used.
class ControlServer {
public:
    static constexpr size_t kMaxClients = 64; // others get an error and are closed

    // Throws std::runtime_error if the socket cannot be made.
    ControlServer(Bench& bench, const std::filesystem::path& socket);
    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

private:
    void accept(GSocketConnection* connection);
    void removeClosed();

    Bench& bench_;
    GSocketService* const service_;
    std::list<ControlConnection> connections_;
    guint removal_ = 0; // GLib's number of the idle source; 0 if there is none
};

} // namespace sim
