// Commands from standard input.
#pragma once

#include "sim/bench/conversation.h"
#include "sim/control/event_source.h"
#include "sim/control/line_reader.h"

#include <memory>

namespace sim {

// Executes the lines of standard input, from GLib's default main context. Prints what they answer
// to standard output, and errors to standard error. The end of the input ends nothing.
class StandardInput final : private Answers {
public:
    explicit StandardInput(Bench& bench);
    ~StandardInput() override = default;
    StandardInput(const StandardInput&) = delete;
    StandardInput& operator=(const StandardInput&) = delete;

private:
    void send(const Json::Value& object) override;
    void execute(std::string_view line);
    bool read();

    Conversation conversation_;
    LineReader lines_;
    std::unique_ptr<EventSource> source_;
};

} // namespace sim
