#include "hid/model/ReportTemplate.h"

#include <algorithm>

namespace KX {

Bytes Cleared(Bytes report)
{
    if (report.size() >= 2)
        std::fill(report.begin() + 1, report.end(), uint8_t{0});
    return report;
}

bool ShareReport(const Bytes& first, const Bytes& second)
{
    return !first.empty() && !second.empty() && first.front() == second.front();
}

Bytes Combined(Bytes first, const Bytes& second)
{
    if (ShareReport(first, second)) {
        const size_t size = std::min(first.size(), second.size());
        for (size_t i = 1; i < size; ++i)
            first[i] |= second[i];
    }
    return first;
}

bool Matches(const Bytes& mask, std::span<const uint8_t> report)
{
    return std::equal(mask.begin(), mask.end(), report.begin(), report.end(),
        [](uint8_t wanted, uint8_t got) { return (wanted & got) == wanted; });
}

} // namespace KX
