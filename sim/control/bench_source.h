// Runs the bench in GLib's main loop.
#pragma once

#include "sim/bench/bench.h"

#include <glib.h>

namespace sim {

// Calls Bench::tick() from the default main context when there are events and when it is time.
class BenchSource {
public:
    // `bench` must outlive the object.
    explicit BenchSource(Bench& bench);
    ~BenchSource();
    BenchSource(const BenchSource&) = delete;
    BenchSource& operator=(const BenchSource&) = delete;

private:
    GSource* const source_;
};

} // namespace sim
