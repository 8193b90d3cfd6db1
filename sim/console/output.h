// An output of the bench that never blocks it.
#pragma once

#include "sim/bus/file_descriptor.h"
#include "sim/control/event_source.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace sim {

// Prints lines to a standard stream. What the stream does not take at once is kept and written by
// GLib's default main context, in whose thread the object must be used. After an error, lines are
// dropped. SIGPIPE must be ignored.
class Output {
public:
    static constexpr size_t kEnough = 64 * size_t{1024}; // bytes

    explicit Output(int file); // STDOUT_FILENO or STDERR_FILENO
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void print(std::string_view line);

    // The number of bytes that are not written yet. It has no limit of its own.
    [[nodiscard]] size_t waiting() const { return text_.size(); }
    // The reader is slow or absent. The caller should stop producing lines.
    [[nodiscard]] bool isFull() const { return waiting() >= kEnough; }

    // Writes what the stream takes now.
    void write();
    // Waits until all is written, at most this long, and drops the rest.
    void finish(std::chrono::milliseconds limit);

    // errno of the write that failed; 0 if none did.
    [[nodiscard]] int error() const { return error_; }

private:
    [[nodiscard]] bool waitForRoom(std::chrono::milliseconds limit) const;
    ssize_t writeSome(std::string_view text);
    void watch();

    const FileDescriptor reopened_; // empty if file_ is used itself
    const int file_;
    std::string text_;
    int error_ = 0;
    std::optional<EventSource> source_; // while text waits
};

} // namespace sim
