// The assertion of the fuzz targets.
#pragma once

#include <cstdlib>

// Ends the process if the condition is false; libFuzzer and the replay treat this as a failure.
// Independent of NDEBUG.
inline void Require(bool condition)
{
    if (!condition)
        std::abort();
}
