#include "base/src/safe_c/safe_c.h"

#include "base/src/safe_c/safe_c_check.h"

#include <cstdio>
#include <cstring>

namespace rkb {

using namespace safe_c;

namespace {

// The common part of sprintf_s and snprintf_s. `message` is for the assert line.
[[gnu::format(printf, 3, 0)]] int format_whole(
    char* buffer, size_t bufsz, const char* format, va_list args, const char* message)
{
    const auto rejected = [&](int code) {
        return -reject(code, message,
            {{"(void *)buffer", buffer}, {"bufsz", bufsz}, {"(void *)format", format}});
    };
    if (!buffer || !format)
        return rejected(null_pointer);
    if (bufsz > max_string_size)
        return rejected(over_limit);
    if (bufsz == 0)
        return rejected(bad_size);
    const int length = vsnprintf(buffer, bufsz, format, args);
    return length < static_cast<int>(bufsz) ? length : rejected(no_space);
}

// Deliberately narrow: checks only the first "%n", and accepts it if a "%" is directly before it.
bool has_illegal_n(const char* format)
{
    const char* const found = strstr(format, "%n");
    return found && (found == format || found[-1] != '%');
}

} // namespace

int sprintf_s(char* buffer, size_t bufsz, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int result = format_whole(buffer, bufsz, format, args, "sprintf_s invalid parameters");
    va_end(args);
    return result;
}

int snprintf_s(char* buffer, size_t bufsz, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int result = format_whole(buffer, bufsz, format, args, "snprintf_s invalid parameters");
    va_end(args);
    return result;
}

int vsprintf_s(char* dst, size_t size, const char* format, va_list args)
{
    const auto rejected = [&](int code, const char* message) {
        return -reject(
            code, message, {{"(void *)dst", dst}, {"size", size}, {"(void *)format", format}});
    };
    if (!dst || !format)
        return rejected(null_pointer, "vsprintf_s invalid parameters");
    if (has_illegal_n(format))
        return rejected(illegal_format, "vsprintf_s: illegal %n");
    const int length = vsnprintf(dst, size, format, args);
    if (length >= 0 && static_cast<size_t>(length) >= size)
        return rejected(no_space, "vsprintf_s have not more expace for the formatted string");
    return length;
}

int vsnprintf_s(char* dst, size_t size, const char* format, va_list args)
{
    const auto rejected = [&](int code, const char* message) {
        return -reject(
            code, message, {{"(void *)dst", dst}, {"size", size}, {"(void *)format", format}});
    };
    if (!dst || !format)
        return rejected(null_pointer, "vsnprintf_s: invalid parameters");
    if (size == 0)
        return rejected(null_pointer, "vsnprintf_s: _dstbuf_size cannot be zero ");
    if (size > max_string_size)
        return rejected(over_limit, "vsnprintf_s: _dstbuf_size exceeds max");
    if (has_illegal_n(format))
        return rejected(illegal_format, "vsnprintf_s: illegal %n");
    return vsnprintf(dst, size, format, args);
}

int sscanf_s(const char* src, const char* format, ...)
{
    if (!src || !format) {
        return reject(
            -1, "sscanf_s invalid parameters", {{"(void *)src", src}, {"(void *)format", format}});
    }
    va_list args;
    va_start(args, format);
    const int result = vsscanf(src, format, args);
    va_end(args);
    return result;
}

} // namespace rkb
