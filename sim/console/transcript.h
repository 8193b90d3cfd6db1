// What kelprobe-sim prints about its devices.
#pragma once

#include "sim/bench/bench.h"
#include "sim/console/output.h"

namespace sim {

// Prints each event for people, a line each. Events come even while nobody reads the output, if
// commands are executed. From 4 MiB of unread lines on they are only counted, and a line has their
// number.
class Transcript final : private BenchListener {
public:
    // `output` must outlive the object.
    Transcript(Bench& bench, Output& output);
    ~Transcript() override;
    Transcript(const Transcript&) = delete;
    Transcript& operator=(const Transcript&) = delete;

private:
    void onEvent(const BenchEvent& event) override;
    void print(const BenchEvent& event);
    void printMissing(const BenchEvent& next);

    Bench& bench_;
    Output& output_;
    size_t missing_ = 0;
};

} // namespace sim
