// What kelprobe-sim prints about its devices.
#pragma once

#include "sim/bench/bench.h"

namespace sim {

// Prints a whole line to standard output and flushes it.
void printLine(const std::string& line);

// Prints each event for people, a line each.
class Transcript final : private BenchListener {
public:
    explicit Transcript(Bench& bench);
    ~Transcript() override;
    Transcript(const Transcript&) = delete;
    Transcript& operator=(const Transcript&) = delete;

private:
    void onEvent(const BenchEvent& event) override;

    Bench& bench_;
};

} // namespace sim
