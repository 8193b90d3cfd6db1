#include "sim/console/transcript.h"

#include <algorithm>
#include <cstdio>

namespace sim {

std::string describe(const std::string& what, const Bytes& report)
{
    constexpr size_t kColumn = 20;
    constexpr size_t kGap = 2; // after words that reach over the column
    std::string line = what;
    line.resize(what.size() < kColumn ? kColumn : what.size() + kGap, ' ');
    return line + toHex(report);
}

void Transcript::print(size_t device, const std::string& line)
{
    const std::lock_guard lock(mutex_);
    if (numbered_)
        printf("%zu: ", device);
    printf("%s\n", line.c_str());
    fflush(stdout);
}

} // namespace sim
