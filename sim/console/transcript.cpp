#include "sim/console/transcript.h"

#include <cstdio>

namespace sim {

void printLine(const std::string& line)
{
    printf("%s\n", line.c_str());
    fflush(stdout);
}

Transcript::Transcript(Bench& bench)
    : bench_(bench)
{
    bench_.add(*this);
}

Transcript::~Transcript()
{
    bench_.remove(*this);
}

// With more than one device, the number of the device comes after the time.
void Transcript::onEvent(const BenchEvent& event)
{
    const std::string line
        = toText(event, bench_.devices().size() > 1 ? Numbered::kYes : Numbered::kNo);
    if (!line.empty())
        printLine(line);
}

} // namespace sim
