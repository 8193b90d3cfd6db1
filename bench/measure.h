// Measures two implementations of the same task against each other, in one process and interleaved,
// so that other load on the machine affects both equally.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <vector>

namespace bench {

inline constexpr size_t rounds = 21;

// Keeps the optimiser from removing the computation of `value`.
template <typename value_t>
inline void keep(const value_t& value)
{
    asm volatile("" : : "r,m"(value) : "memory");
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

template <typename batch_t>
double nanoseconds(const batch_t& batch)
{
    const auto begin = std::chrono::steady_clock::now();
    batch();
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - begin)
        .count();
}

inline void print_head()
{
    std::puts("| what | ours | peer | ratio | aim |\n| --- | ---: | ---: | ---: | --- |");
}

// Prints one row of the table: the medians in nanoseconds per operation, and the median of the
// rounds' ratios. `ours` and `peer` each do a batch of `operations`; the first round only warms up.
template <typename ours_t, typename peer_t>
void compare(
    const char* what, const char* aim, size_t operations, const ours_t& ours, const peer_t& peer)
{
    std::vector<double> our_times;
    std::vector<double> peer_times;
    std::vector<double> ratios;
    for (size_t round = 0; round <= rounds; ++round) {
        const double our_time = nanoseconds(ours) / static_cast<double>(operations);
        const double peer_time = nanoseconds(peer) / static_cast<double>(operations);
        if (round == 0)
            continue;
        our_times.push_back(our_time);
        peer_times.push_back(peer_time);
        ratios.push_back(our_time / peer_time);
    }
    std::printf("| %s | %.1f ns | %.1f ns | %.2f | %s |\n", what, median(our_times),
        median(peer_times), median(ratios), aim);
    std::fflush(stdout);
}

} // namespace bench
