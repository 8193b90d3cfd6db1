#include "sim/console/transcript.h"

#include <utility>

namespace sim {

Transcript::Transcript(Bench& bench, Output& output)
    : bench_(bench)
    , output_(output)
{
    bench_.add(*this);
}

Transcript::~Transcript()
{
    bench_.remove(*this);
}

void Transcript::onEvent(const BenchEvent& event)
{
    constexpr size_t kMost = 4 * size_t{1024} * 1024;
    if (output_.waiting() >= kMost) {
        ++missing_;
        return;
    }
    if (missing_)
        printMissing(event);
    print(event);
}

// With more than one device, the number of the device comes after the time.
void Transcript::print(const BenchEvent& event)
{
    const std::string line
        = toText(event, bench_.devices().size() > 1 ? Numbered::kYes : Numbered::kNo);
    if (!line.empty())
        output_.print(line);
}

void Transcript::printMissing(const BenchEvent& next)
{
    print({.device = next.device,
        .kind = BenchEvent::Kind::kNote,
        .time = next.time,
        .name = std::to_string(std::exchange(missing_, 0))
            + " events are missing here: nobody has read this output"});
}

} // namespace sim
