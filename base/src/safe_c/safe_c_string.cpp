#include "base/src/safe_c/safe_c.h"

#include "base/src/safe_c/safe_c_check.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string_view>
#include <unistd.h>

namespace rkb {

using namespace safe_c;

namespace {

// Reads at most `size` bytes. Sets `rest` to where the next token is to be looked for, or to null
// if neither a NUL nor the end of a token is among these bytes.
char* cut_token(char* begin, size_t size, const char* delim, char*& rest)
{
    const std::string_view text(begin, strnlen(begin, size));
    char* const end = begin + text.size();
    const size_t first = text.find_first_not_of(delim);
    const size_t after = text.find_first_of(delim, first);
    if (after != text.npos && first != text.npos) {
        begin[after] = '\0';
        rest = begin + after + 1;
        return begin + first;
    }
    rest = text.size() < size ? end : nullptr;
    return first != text.npos && rest ? begin + first : nullptr;
}

} // namespace

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

// The copies check everything before they write, so that a rejected call has written nothing. After
// the checks source and destination do not overlap, so memcpy() is safe.

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

    // The buffers overlap if the copy reaches the start of the other one.
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

char* strtok_s(char* str, size_t strmax, const char* delim, char** ptr)
{
    const auto rejected = [&](int code, const char* message) {
        reject(code, message,
            {{"(void *)str", str}, {"strmax", strmax}, {"(void *)delim", delim},
                {"(void *)ptr", ptr}});
        return nullptr;
    };
    if (strmax > max_string_size)
        return rejected(over_limit, "strtok_s invalid parameters");
    if (!delim || !ptr)
        return rejected(null_pointer, "strtok_s invalid parameters");
    char* const begin = str ? str : *ptr;
    if (!begin) {
        return rejected(
            null_pointer, "strtok_s invalid parameters *ptr should be not null if str is null");
    }

    char* const token = cut_token(begin, strmax, delim, *ptr);
    return *ptr ? token : rejected(no_space, "strtok_s invalid parameters");
}

int getenv_s(size_t* len, char* value, size_t valuesz, const char* name)
{
    const auto rejected = [&](int code) {
        return reject(code, "getenv_s invalid parameters",
            {{"(void *)len", len}, {"(void *)value", value}, {"valuesz", valuesz},
                {"(void *)name", name}});
    };
    if (!len || !value || !name || valuesz < 2)
        return rejected(bad_size);
    if (!environ)
        return rejected(null_pointer);
    const char* const found = getenv(name);
    if (!found)
        return rejected(not_found);
    const size_t length = strnlen(found, valuesz);
    if (length == valuesz)
        return rejected(no_space);
    memcpy(value, found, length + 1);
    *len = length;
    return success;
}

} // namespace rkb
