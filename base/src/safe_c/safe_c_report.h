// The report of a rejected call; private to the bounded functions.
#pragma once

#include "base/src/safe_c/safe_c.h"

#include <initializer_list>

namespace rkb::safe_c {

// An argument that was tested, under the name that the report gives it.
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

// Writes the assert line of a call that is being rejected at `line`, and returns `code`.
[[gnu::cold, gnu::noinline]] int reject(
    int code, const char* message, arguments_t arguments, int line = __builtin_LINE());

} // namespace rkb::safe_c
