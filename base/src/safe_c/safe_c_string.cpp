#include "base/src/safe_c/safe_c.h"

#include "base/src/safe_c/safe_c_overlap.h"
#include "base/src/safe_c/safe_c_report.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

namespace rkb {

using namespace safe_c;

size_t strnlen_s(const char* str, size_t strsz)
{
    const size_t length = str && strsz <= max_string_size ? strnlen(str, strsz) : 0;
    if (length == strsz || !str || strsz > max_string_size) {
        reject(over_limit, "strnlen_s string size limitation out of scope",
            {{"(void *)str", str}, {"strsz", strsz}});
    }
    return length;
}

size_t wcsnlen_s(const wchar_t* str, size_t strsz)
{
    if (str && strsz <= max_string_size)
        return wcsnlen(str, strsz);
    reject(over_limit, "wcsnlen_s string size limitation out of scope",
        {{"(void *)str", str}, {"strsz", strsz}});
    return 0;
}

// The copies look for all they need to know before they write, so that a rejected call has written
// nothing; what they copy is then known to lie apart.

int strcpy_s(char* dest, size_t destsz, const char* src)
{
    const auto rejected = [&](int code, const char* message) {
        return reject(
            code, message, {{"(void *)dest", dest}, {"destsz", destsz}, {"(void *)src", src}});
    };
    if (!dest || !src)
        return rejected(null_pointer, "strcpy_s invalid parameters");
    if (destsz == 0)
        return rejected(bad_size, "strcpy_s invalid parameters");
    if (destsz > max_string_size)
        return rejected(over_limit, "strcpy_s invalid parameters");

    // A copy that goes as far as the start of the other buffer has met it.
    const size_t gap = distance(dest, src);
    const size_t room = std::min(gap, destsz);
    const size_t length = strnlen(src, room);
    if (length == room && gap < destsz)
        return rejected(overlap, "strcpy_s, overlap is not allow");
    if (length == room)
        return rejected(no_space, "strcpy_s, space is not enough");
    memcpy(dest, src, length + 1);
    return success;
}

int strncpy_s(char* dest, size_t destsz, const char* src, size_t count)
{
    const auto rejected = [&](int code, const char* message) {
        return reject(code, message,
            {{"(void *)dest", dest}, {"destsz", destsz}, {"(void *)src", src}, {"count", count}});
    };
    if (!dest || !src)
        return rejected(null_pointer, "strncpy_s invalid parameters");
    if (destsz > max_string_size || count > max_string_size)
        return rejected(over_limit, "strncpy_s invalid parameters");
    if (destsz == 0 || count == 0)
        return rejected(bad_size, "strncpy_s invalid parameters");

    const size_t length = strnlen(src, std::min(destsz, count));
    if (length == destsz)
        return rejected(no_space, "strncpy_s, space is not enough");
    if (overlaps(dest, length + 1, src, std::min(length + 1, count)))
        return rejected(overlap, "strncpy_s invalid parameters overlap is not allow");
    memcpy(dest, src, length);
    dest[length] = '\0';
    return success;
}

int strcat_s(char* dest, size_t destsz, const char* src)
{
    const auto rejected = [&](int code, const char* message) {
        return reject(
            code, message, {{"(void *)dest", dest}, {"destsz", destsz}, {"(void *)src", src}});
    };
    if (!dest || !src)
        return rejected(null_pointer, "strcat_s invalid parameters");
    if (destsz > max_string_size)
        return rejected(over_limit, "strcat_s invalid parameters");

    const size_t used = strnlen(dest, destsz);
    const size_t room = destsz - used;
    const size_t length = strnlen(src, room);
    if (length == room) // also when there is no NUL in `dest`, hence no room
        return rejected(no_space, "strcat_s invalid parameters");
    char* const end = dest + used;
    if (overlaps(end, length + 1, src, length + 1))
        return rejected(overlap, "strcat_s, overlap is not allow");
    memcpy(end, src, length + 1);
    return success;
}

} // namespace rkb
