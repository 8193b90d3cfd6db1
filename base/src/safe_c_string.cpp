#include "safe_c.h"

#include "safe_c_overlap.h"

#include <algorithm>
#include <cstring>

namespace rkb {

using namespace safe_c;

int strcpy_s(char* dest, size_t destsz, const char* src)
{
    if (!dest || !src)
        return null_pointer;
    if (destsz == 0)
        return bad_size;
    if (destsz > max_string_size)
        return over_limit;

    // A copy cursor may go as far as the start of the other buffer. Looking for the NUL no further
    // than that finds every overlap before a byte is written.
    const size_t gap = distance(dest, src);
    const size_t room = std::min(gap, destsz);
    const size_t length = strnlen(src, room);
    if (length < room) {
        memcpy(dest, src, length + 1);
        return success;
    }
    return gap < destsz ? overlap : no_space;
}

int strcat_s(char* dest, size_t destsz, const char* src)
{
    if (!dest || !src)
        return null_pointer;
    if (destsz > max_string_size)
        return over_limit;

    const size_t used = strnlen(dest, destsz);
    const size_t room = destsz - used;
    const size_t length = strnlen(src, room);
    if (length == room)
        return no_space;
    if (distance(dest + used, src) <= length)
        return overlap;
    memcpy(dest + used, src, length + 1);
    return success;
}

} // namespace rkb
