// When the two ranges of a bounded copy are too close; private to the bounded functions.
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

// Whether the ranges share a byte. Cannot wrap, whatever the sizes.
inline bool overlaps(const void* dest, size_t dest_size, const void* src, size_t src_size)
{
    const bool dest_is_first = reinterpret_cast<uintptr_t>(dest) < reinterpret_cast<uintptr_t>(src);
    return distance(dest, src) < (dest_is_first ? dest_size : src_size);
}

} // namespace rkb::safe_c
