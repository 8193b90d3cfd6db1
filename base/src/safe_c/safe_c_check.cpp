#include "base/src/safe_c/safe_c_check.h"

#include "base/src/log/log.h"

#include <cassert>

namespace rkb::safe_c {

namespace {

text_stream_t& operator<<(text_stream_t& stream, arguments_t arguments)
{
    for (const argument_t& argument : arguments) {
        stream << ", " << argument.name << " = ";
        if (argument.is_pointer)
            stream << argument.pointer;
        else
            stream << argument.number;
    }
    return stream;
}

} // namespace

int reject(int code, const char* message, arguments_t arguments, int line)
{
    assert(code != success);
    // All bounded functions name the same file. People search logs for it.
    RKB_LOG_ASSERT("../src/safe_c", line, message << arguments);
    return code;
}

} // namespace rkb::safe_c
