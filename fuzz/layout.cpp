// A report descriptor: its layout, annotation, and reports in numbers and words. Input: the
// descriptor's bytes.
#include "fuzz/layout_difference.h"
#include "fuzz/require.h"

#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr size_t maxSize = 4096; // Linux does not read longer descriptors
    if (size > maxSize)
        return 0;
    const std::string difference = naive::LayoutDifference({data, size});
    if (!difference.empty())
        std::fprintf(stderr, "%s\n", difference.c_str());
    Require(difference.empty());
    return 0;
}
