#include "bench/program/samples.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace bench {
namespace {

constexpr double kMiddle = 0.5;

std::string text(double value, const Unit& unit)
{
    const double count = value / unit.size;
    std::array<char, 32> buffer{};
    const int decimals = count < 0.1 ? 4 : count < 100 ? 2 : 0;
    std::snprintf(buffer.data(), buffer.size(), "%.*f %s", decimals, count, unit.name);
    return buffer.data();
}

void print(const Row& row, double subject, double peer, double ratio)
{
    std::printf("| %s | %s | %s | %s | %.2f | %s |\n", row.what, row.beside,
        text(subject, row.unit).c_str(), text(peer, row.unit).c_str(), ratio, row.aim);
    std::fflush(stdout);
}

} // namespace

double quantile(std::vector<double> values, double share)
{
    const auto index = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + index, values.end());
    return values[static_cast<size_t>(index)];
}

void printHead()
{
    std::puts("| what | compared with | Kelprobe | peer | ratio | aim |\n"
              "| --- | --- | ---: | ---: | ---: | --- |");
    std::fflush(stdout);
}

void printRow(const Row& row, const Samples& samples)
{
    std::vector<double> ratios;
    for (size_t i = 0; i < samples.subject.size(); ++i)
        ratios.push_back(samples.subject[i] / samples.peer[i]);
    print(row, quantile(samples.subject, kMiddle), quantile(samples.peer, kMiddle),
        quantile(ratios, kMiddle));
}

void printQuantiles(const Row& row, const Samples& samples, double share)
{
    const double subject = quantile(samples.subject, share);
    const double peer = quantile(samples.peer, share);
    print(row, subject, peer, subject / peer);
}

} // namespace bench
