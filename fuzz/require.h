// What a fuzz target asserts.
#pragma once

#include <cstdlib>

// Ends the process, which is how libFuzzer and the replay notice a wrong result. Independent of
// NDEBUG.
inline void Require(bool condition)
{
    if (!condition)
        std::abort();
}
