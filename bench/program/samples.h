// Interleaved measurements of a subject and a peer.
#pragma once

#include <string>
#include <vector>

namespace bench {

inline constexpr int kRounds = 15; // of interleaved samples, where a sample takes long

// The value that a share of the values does not exceed; 0.5 is the median.
double quantile(std::vector<double> values, double share);

struct Samples {
    std::vector<double> subject;
    std::vector<double> peer; // as many
};

struct Unit {
    const char* name;
    double size; // of one, in the samples' unit
};

inline constexpr Unit kMilliseconds{"ms", 1e6}; // of nanoseconds
inline constexpr Unit kMicroseconds{"µs", 1e3};
inline constexpr Unit kNanoseconds{"ns", 1};
inline constexpr Unit kMebibytes{"MiB", 1024.0 * 1024.0}; // of bytes
inline constexpr Unit kPercent{"%", 1e-2};                // of a share

void printHead();

struct Row {
    const char* what;
    const char* beside; // the peer
    const char* aim;
    Unit unit;
};

// The medians, and the median of the rounds' ratios.
void printRow(const Row& row, const Samples& samples);

// The same quantile of both, and the ratio of the two: for samples that are not taken in pairs.
void printQuantiles(const Row& row, const Samples& samples, double share);

} // namespace bench
