// When source and destination of a bounded copy are too close; private to the bounded functions.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rkb::safe_c {

// The bytes between the starts of two buffers, whichever comes first.
inline size_t distance(const void* a, const void* b)
{
    const auto first = reinterpret_cast<uintptr_t>(a);
    const auto second = reinterpret_cast<uintptr_t>(b);
    return first < second ? second - first : first - second;
}

} // namespace rkb::safe_c
