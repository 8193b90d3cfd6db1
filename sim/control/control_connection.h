// A client of the control socket.
#pragma once

#include "sim/bench/conversation.h"
#include "sim/control/event_source.h"
#include "sim/control/line_reader.h"

#include <gio/gio.h>

#include <optional>

namespace sim {

// Reads commands and writes their answers. Closes the connection if the client writes what is no
// line of text, or if too many answers wait for it. Uses GLib's default main context.
class ControlConnection final : private Answers {
public:
    static constexpr size_t kMaxWaiting = size_t{1024} * 1024; // bytes of answers

    // `onClose` is called from the main context, once, after which the object may be destroyed,
    // but not during the call. Takes its own reference to `connection`.
    ControlConnection(Bench& bench, GSocketConnection* connection, std::function<void()> onClose);
    ~ControlConnection() override;
    ControlConnection(const ControlConnection&) = delete;
    ControlConnection& operator=(const ControlConnection&) = delete;

    [[nodiscard]] bool isClosed() const { return closed_; }

private:
    void send(const Json::Value& object) override;
    void addLine(std::string_view line);
    void refuse(const std::string& error);

    // The conditions of the socket.
    bool handle(GIOCondition condition);
    void read();
    void write();
    void watch();
    void close();

    GSocketConnection* const connection_;
    GSocket* const socket_; // of the connection
    const std::function<void()> onClose_;
    Conversation conversation_;
    LineReader lines_;
    std::string output_; // not yet written
    std::optional<EventSource> source_;
    GIOCondition watched_{};
    bool ended_ = false; // the client sends no more
    bool closed_ = false;
};

} // namespace sim
