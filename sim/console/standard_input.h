// Commands from standard input.
#pragma once

#include "sim/bench/conversation.h"
#include "sim/console/output.h"
#include "sim/control/event_source.h"
#include "sim/control/line_reader.h"

#include <optional>

namespace sim {

// Executes the lines of standard input, from GLib's default main context. The end of the input ends
// nothing. Reads no more while a command waits or nobody reads the outputs, and nothing while
// another process group has the terminal. SIGTTIN must be ignored.
class StandardInput final : private Answers {
public:
    // Prints answers to `output` and errors to `errors`, which must outlive the object.
    StandardInput(Bench& bench, Output& output, Output& errors);
    ~StandardInput() override = default;
    StandardInput(const StandardInput&) = delete;
    StandardInput& operator=(const StandardInput&) = delete;

    // Begins to read or pauses. To be called after each iteration of the main context.
    void update();

private:
    void send(const Json::Value& object) override;
    void execute(std::string_view line);
    void fail(const std::string& error);
    void read();

    Output& output_;
    Output& errors_;
    Conversation conversation_;
    LineReader lines_;
    std::optional<EventSource> source_; // while it reads
    std::optional<EventSource> retry_;  // while the terminal is not ours
    bool ended_ = false;
};

} // namespace sim
