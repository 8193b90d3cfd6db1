#include "sim/bench/replay.h"

#include "sim/bench/command_words.h"

#include <cstdio>

namespace sim {
namespace {

using Direction = report::RecordedReport::Direction;

report::ReportKind kindOf(Direction direction)
{
    switch (direction) {
    case Direction::kInput:
        return report::ReportKind::kInput;
    case Direction::kOutput:
        return report::ReportKind::kOutput;
    default:
        return report::ReportKind::kFeature;
    }
}

bool isFromProgram(BenchEvent::Kind kind)
{
    return kind == BenchEvent::Kind::kOutput || kind == BenchEvent::Kind::kFeature
        || kind == BenchEvent::Kind::kWriteRefused;
}

const char* nameOf(Direction direction)
{
    return direction == Direction::kInput ? "in     "
        : direction == Direction::kOutput ? "out    "
                                          : "feature";
}

} // namespace

Replay::Replay(Bench& bench, BenchDevice& device, std::vector<report::RecordedReport> reports,
    const ReplayOptions& options, DifferenceCallback onDifference)
    : bench_(bench)
    , device_(device)
    , reports_(std::move(reports))
    , options_(options)
    , onDifference_(std::move(onDifference))
{
    findNext(nextInput_, Sender::kDevice);
    findNext(nextArrival_, Sender::kDevice);
    findNext(nextOutput_, Sender::kProgram);
    bench_.add(*this);
}

Replay::~Replay()
{
    bench_.remove(*this);
}

Replay::Sender Replay::senderOf(const report::RecordedReport& report)
{
    return report.direction == Direction::kInput ? Sender::kDevice : Sender::kProgram;
}

bool Replay::isPlaying() const
{
    return nextInput_ < reports_.size() && !differs_;
}

void Replay::findNext(size_t& index, Sender sender) const
{
    while (index < reports_.size() && senderOf(reports_[index]) != sender)
        ++index;
}

void Replay::onEvent(const BenchEvent& event)
{
    if (event.device != device_.number() || event.interface || differs_)
        return;
    if (event.kind == BenchEvent::Kind::kOpened && !opened_) {
        opened_ = event.time;
        latest_ = event.time;
    }
    if (options_.check && isFromProgram(event.kind))
        receive(event);
    if (event.kind == BenchEvent::Kind::kInput && event.cause == BenchEvent::kRecordedCause)
        noteArrival(event);
}

void Replay::noteArrival(const BenchEvent& event)
{
    const size_t index = nextArrival_++;
    findNext(nextArrival_, Sender::kDevice);
    if (!options_.check || event.delivery == Delivery::kQueued)
        return;
    differ(index,
        event.delivery == Delivery::kNoListener ? "the program does not read from the device"
                                                : "the program reads too slowly");
}

void Replay::receive(const BenchEvent& event)
{
    const bool isFeature = event.kind == BenchEvent::Kind::kFeature;
    if (nextOutput_ == reports_.size())
        return differ(nextOutput_, "the program sent " + toHex(event.report));
    const report::RecordedReport& expected = reports_[nextOutput_];
    if (event.report != expected.bytes || isFeature != (expected.direction == Direction::kFeature))
        return differ(nextOutput_,
            std::string("the program sent ") + (isFeature ? "the feature report " : "")
                + toHex(event.report));
    latest_ = std::max(latest_, event.time);
    ++nextOutput_;
    findNext(nextOutput_, Sender::kProgram);
}

// In the recording, between this report and the one before it.
BenchListener::Time Replay::gapBefore(size_t index) const
{
    const Time gap = index == 0 ? Time(0) : reports_[index].time - reports_[index - 1].time;
    return std::chrono::duration_cast<Time>(gap / options_.speed);
}

std::optional<BenchListener::Time> Replay::inputTime() const
{
    if (!opened_ || !isPlaying())
        return std::nullopt;
    if (!options_.check) {
        const Time offset = reports_[nextInput_].time - reports_.front().time;
        return *opened_ + std::chrono::duration_cast<Time>(offset / options_.speed);
    }
    if (nextOutput_ < nextInput_)
        return std::nullopt;
    return latest_ + gapBefore(nextInput_);
}

// When the program's next report is late. No value if no input report waits for it: the program may
// send what comes after the last one when it ends.
std::optional<BenchListener::Time> Replay::outputLimit() const
{
    if (!opened_ || !options_.check || !isPlaying() || nextOutput_ >= nextInput_)
        return std::nullopt;
    return latest_ + gapBefore(nextOutput_) + options_.patience;
}

std::optional<BenchListener::Time> Replay::nextTick() const
{
    if (bench_.isHeld())
        return std::nullopt;
    const auto input = inputTime();
    return input ? input : outputLimit();
}

void Replay::onTick()
{
    for (auto due = inputTime(); due && *due <= bench_.now() && !bench_.isHeld();
         due = inputTime()) {
        const report::RecordedReport& input = reports_[nextInput_];
        latest_ = bench_.now();
        ++nextInput_;
        findNext(nextInput_, Sender::kDevice);
        device_.sendRecorded(input.bytes);
        bench_.dispatch();
    }
    if (const auto limit = outputLimit(); limit && *limit <= bench_.now() && !bench_.isHeld())
        differ(nextOutput_, "the program sent nothing for " + durationText(options_.patience));
    if (opened_ && nextArrival_ == reports_.size() && !differs_ && !announced_) {
        announced_ = true;
        device_.note("every recorded report was sent");
    }
}

void Replay::end()
{
    if (options_.check && !differs_ && nextOutput_ < reports_.size())
        differ(nextOutput_, "the program ended");
    else if (options_.check && isPlaying())
        differ(nextInput_, "the program ended before this report");
}

// Like a difference of texts: three reports before it, what was expected and what was found.
std::string Replay::context(size_t index) const
{
    constexpr size_t kBefore = 3;
    Panel panel(device_.reportDescriptor()); // its meanings are those of changes
    std::string text;
    for (size_t i = 0; i <= index && i < reports_.size(); ++i) {
        const report::RecordedReport& report = reports_[i];
        std::string meaning;
        for (const std::string& word : panel.meaning(kindOf(report.direction), report.bytes))
            meaning += (meaning.empty() ? "" : ", ") + word;
        if (i + kBefore < index)
            continue;
        char time[32];
        snprintf(time, sizeof time, "%13.6f  ", static_cast<double>(report.time.count()) / 1e6);
        text += (i == index ? "- " : "  ") + std::string(time) + nameOf(report.direction) + "  "
            + toHex(report.bytes) + (meaning.empty() ? "" : "     " + meaning) + '\n';
    }
    return text + (index == reports_.size() ? "- the recording ends\n" : "");
}

void Replay::differ(size_t index, const std::string& found)
{
    differs_ = true;
    const std::string which = index == reports_.size()
        ? "after the last report"
        : "at report " + std::to_string(index + 1) + " of " + std::to_string(reports_.size());
    onDifference_("difference " + which + ":\n" + context(index) + "+ " + found);
}

} // namespace sim
