// Common to the bounded functions: the test for overlap and the report of a rejected call.
#pragma once

#include "base/src/safe_c/safe_c.h"

#include <cstdint>
#include <initializer_list>

namespace rkb::safe_c {

// The number of bytes between the starts of two buffers, in either order.
inline size_t distance(const void* a, const void* b)
{
    const auto first = reinterpret_cast<uintptr_t>(a);
    const auto second = reinterpret_cast<uintptr_t>(b);
    return first < second ? second - first : first - second;
}

// Whether the ranges have a byte in common. Does not overflow, whatever the sizes.
inline bool overlaps(const void* dest, size_t dest_size, const void* src, size_t src_size)
{
    const bool dest_is_first = reinterpret_cast<uintptr_t>(dest) < reinterpret_cast<uintptr_t>(src);
    return distance(dest, src) < (dest_is_first ? dest_size : src_size);
}

// A checked argument and its name in the assert line.
struct argument_t {
    argument_t(const char* argument_name, const void* value)
        : name(argument_name)
        , is_pointer(true)
        , pointer(value)
    {
    }
    argument_t(const char* argument_name, size_t value)
        : name(argument_name)
        , is_pointer(false)
        , number(value)
    {
    }

    const char* name;
    bool is_pointer;
    union {
        const void* pointer;
        size_t number;
    };
};

using arguments_t = std::initializer_list<argument_t>;

// Logs the assert line of a call that is rejected with `code`, and returns `code`.
[[gnu::cold, gnu::noinline]] int reject(
    int code, const char* message, arguments_t arguments, int line = __builtin_LINE());

} // namespace rkb::safe_c
