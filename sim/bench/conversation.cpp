#include "sim/bench/conversation.h"

#include "tools/text/printable.h"

#include <json/value.h>

#include <algorithm>
#include <utility>

namespace sim {

Conversation::Conversation(Bench& bench, Answers& answers)
    : bench_(bench)
    , answers_(answers)
{
    bench_.add(*this);
}

Conversation::~Conversation()
{
    bench_.remove(*this);
}

void Conversation::add(std::string_view line)
{
    lines_.emplace_back(line);
    startLines();
}

void Conversation::startLines()
{
    while (!wait_ && !lines_.empty()) {
        const std::string line = std::move(lines_.front());
        lines_.pop_front();
        start(line);
    }
}

void Conversation::endStream()
{
    if (std::exchange(streams_, false))
        finish({});
}

void Conversation::start(std::string_view line)
{
    endStream();
    bench_.dispatch();
    const CommandOutcome outcome = runCommand(bench_, answers_, line);
    streams_ = std::holds_alternative<CommandStream>(outcome);
    bench_.dispatch();
    if (const auto* const result = std::get_if<CommandResult>(&outcome)) {
        finish(*result);
    } else if (const auto* const wait = std::get_if<CommandWait>(&outcome)) {
        wait_ = *wait;
        result_ = {kNotMet}; // finishWait() checks
        deadline_ = bench_.now() + wait->within;
        finishWait();
    }
}

void Conversation::finishWait()
{
    checked_ = bench_.now();
    if (result_.status != kDone)
        result_ = wait_->check();
    if (result_.status != kDone && bench_.now() < deadline_)
        return;
    wait_.reset();
    finish(result_);
}

void Conversation::finish(const CommandResult& result)
{
    Json::Value object;
    object["status"] = result.status;
    if (result.status != kDone)
        object["error"] = text::printable(result.error); // contains words of the line
    answers_.send(object);
}

// A condition that holds for a moment only is not missed.
void Conversation::onEvent(const BenchEvent& event)
{
    if (streams_)
        answers_.send(toJson(event));
    if (wait_ && result_.status != kDone)
        result_ = wait_->check();
}

void Conversation::onTick()
{
    if (wait_)
        finishWait();
    startLines();
}

// Some conditions become true by time alone: an idle device, a lamp that no longer blinks.
std::optional<BenchListener::Time> Conversation::nextTick() const
{
    constexpr std::chrono::milliseconds kInterval{20};
    if (!wait_)
        return std::nullopt;
    return std::min<Time>(deadline_, checked_ + kInterval);
}

} // namespace sim
