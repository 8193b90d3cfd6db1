#include "samples.h"

#include <algorithm>
#include <cstdio>

namespace bench {
namespace {

constexpr double kMiddle = 0.5;

void print(const Row& row, double subject, double peer, double ratio)
{
    std::printf("| %s | %s | %.2f %s | %.2f %s | %.2f | %s |\n", row.what, row.beside,
        subject / row.unit.size, row.unit.name, peer / row.unit.size, row.unit.name, ratio,
        row.aim);
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
    std::puts("| what | beside | Kelprobe | peer | ratio | aim |\n"
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

void printAlone(const Row& row, const std::vector<double>& values)
{
    std::printf("| %s | %s | %.2f %s | | | %s |\n", row.what, row.beside,
        quantile(values, kMiddle) / row.unit.size, row.unit.name, row.aim);
    std::fflush(stdout);
}

} // namespace bench
