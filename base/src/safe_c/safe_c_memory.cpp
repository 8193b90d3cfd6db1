#include "base/src/safe_c/safe_c.h"

#include "base/src/safe_c/safe_c_check.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace rkb {

using namespace safe_c;

namespace {

int check_sizes(size_t destsz, size_t count)
{
    if (destsz == 0 || count == 0)
        return bad_size;
    if (destsz > max_memory_size)
        return over_limit;
    return destsz < count ? no_space : success;
}

// The ranges must differ. memcmp() compares whole blocks fast, but does not return the position.
int first_difference(const unsigned char* a, const unsigned char* b, size_t size)
{
    constexpr size_t block = 256;
    while (size > block && memcmp(a, b, block) == 0) {
        a += block;
        b += block;
        size -= block;
    }
    const auto [at_a, at_b] = std::mismatch(a, a + size, b);
    assert(at_a < a + size);
    return *at_a - *at_b;
}

} // namespace

int memcmp_s(const void* dest, size_t dmax, const void* src, size_t smax, int* diff)
{
    const auto rejected = [&](int code, const char* message) {
        return reject(code, message,
            {{"(void *)dest", dest}, {"dmax", dmax}, {"(void *)src", src}, {"smax", smax},
                {"(void *)diff", diff}});
    };
    if (!dest || !src || !diff)
        return rejected(null_pointer, "memcmp_s invalid parameters differ");
    if (dmax == 0 || smax == 0 || dmax < smax)
        return rejected(bad_size, "memcmp_s invalid parameters");
    if (dmax > max_memory_size || smax > dmax) // the second test is repeated deliberately
        return rejected(over_limit, "memcmp_s invalid parameters");

    const auto* const a = static_cast<const unsigned char*>(dest);
    const auto* const b = static_cast<const unsigned char*>(src);
    *diff = memcmp(a, b, smax) == 0 ? 0 : first_difference(a, b, smax);
    return success;
}

int memcpy_s(void* dest, size_t destsz, const void* src, size_t count)
{
    const auto rejected = [&](int code, const char* message) {
        return reject(code, message,
            {{"(void *)dest", dest}, {"destsz", destsz}, {"(void *)src", src}, {"count", count}});
    };
    const int code = !dest || !src ? null_pointer : check_sizes(destsz, count);
    if (code != success)
        return rejected(code, "memcpy_s invalid parameters");
    if (overlaps(dest, destsz, src, count))
        return rejected(overlap, "memcpy_s invalid parameters overlap is not allow");
    memcpy(dest, src, count);
    return success;
}

int memmove_s(void* dest, size_t destsz, const void* src, size_t count)
{
    const int code = !dest || !src ? null_pointer : check_sizes(destsz, count);
    if (code != success) {
        return reject(code, "memmove_s invalid parameters",
            {{"(void *)dest", dest}, {"destsz", destsz}, {"(void *)src", src}, {"count", count}});
    }
    memmove(dest, src, count);
    return success;
}

int memset_s(void* dest, size_t destsz, int value, size_t count)
{
    const int code = !dest ? null_pointer : check_sizes(destsz, count);
    if (code != success) {
        return reject(code, "memset_s invalid parameters",
            {{"(void *)dest", dest}, {"destsz", destsz}, {"count", count}});
    }
    memset(dest, value, count);
    return success;
}

} // namespace rkb
