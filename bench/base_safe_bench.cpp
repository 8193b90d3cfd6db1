// Compares bounded copies with the platform's unbounded memcpy and libbsd's strlcpy.
#include "bench/measure.h"

#include "base/src/safe_c/safe_c.h"

#include <bsd/string.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr size_t bytes_per_batch = 16'000'000;
constexpr size_t max_calls = 200'000;

// Both are called through a pointer, so that the compiler does not replace the calls.
void* (*volatile plain_copy)(void*, const void*, size_t) = memcpy;
size_t (*volatile plain_string_copy)(char*, const char*, size_t) = strlcpy;

template <typename call_t>
auto repeated(size_t times, const call_t& call)
{
    return [times, call] {
        for (size_t i = 0; i < times; ++i)
            call();
    };
}

void measure(size_t size)
{
    std::vector<char> from(size, 'x');
    std::vector<char> to(size);
    from.back() = '\0'; // a string of size - 1 characters as well
    char* const dest = to.data();
    const char* const src = from.data();
    const size_t calls = std::min(bytes_per_batch / size, max_calls);
    const std::string bytes = std::to_string(size) + " bytes";

    bench::compare(("memcpy_s next to memcpy, " + bytes).c_str(), "<= 5 ns over", calls,
        repeated(calls, [=] { bench::keep(rkb::memcpy_s(dest, size, src, size)); }),
        repeated(calls, [=] { bench::keep(plain_copy(dest, src, size)); }));
    bench::compare(("strcpy_s next to strlcpy, " + bytes).c_str(), "<= 5 ns over", calls,
        repeated(calls, [=] { bench::keep(rkb::strcpy_s(dest, size, src)); }),
        repeated(calls, [=] { bench::keep(plain_string_copy(dest, src, size)); }));
}

} // namespace

int main()
{
    bench::print_head();
    for (const size_t size : {16u, 64u, 256u, 1'024u, 4'096u, 16'384u, 65'536u})
        measure(size);
    return 0;
}
