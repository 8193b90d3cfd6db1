// The commands of one front end and their answers.
#pragma once

#include "sim/bench/bench.h"

#include <deque>

namespace sim {

// Executes the lines one after the other. Same thread as the bench, which it must not outlive.
class Conversation final : private BenchListener {
public:
    // `answers` must outlive the object.
    Conversation(Bench& bench, Answers& answers);
    ~Conversation() override;
    Conversation(const Conversation&) = delete;
    Conversation& operator=(const Conversation&) = delete;

    // Executes the line, or keeps it while a command waits. `answers` may not destroy the object.
    void add(std::string_view line);

    // A command waits for its condition. The front end should read no more lines meanwhile.
    [[nodiscard]] bool waits() const { return wait_.has_value(); }

    // Ends `events`, if it runs.
    void endStream();

private:
    void onEvent(const BenchEvent& event) override;
    void onTick() override;
    std::optional<Time> nextTick() const override;
    bool needsEvents() const override { return wait_ || streams_; }
    void startLines();
    void start(std::string_view line);
    void finishWait();
    void finish(const CommandResult& result);

    Bench& bench_;
    Answers& answers_;
    std::deque<std::string> lines_; // not yet begun
    std::optional<CommandWait> wait_;
    CommandResult result_; // of its latest check
    Time checked_{};       // when that was
    Time deadline_{};      // of wait_
    bool streams_ = false;
};

} // namespace sim
