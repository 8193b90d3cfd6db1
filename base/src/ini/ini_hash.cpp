#include "base/src/ini/ini_hash.h"

#include <cstring>
#include <sys/random.h>

namespace rkb {

namespace {

uint64_t make_seed()
{
    uint64_t seed = 0;
    // Without entropy there is still the address space layout.
    if (getrandom(&seed, sizeof seed, GRND_NONBLOCK) != static_cast<ssize_t>(sizeof seed))
        seed = reinterpret_cast<uintptr_t>(&make_seed);
    return seed;
}

template <typename word_t>
uint64_t load(const char* bytes)
{
    word_t word = 0;
    memcpy(&word, bytes, sizeof word);
    return word;
}

// Every bit of the factors reaches every bit of the result through the folded 128-bit product.
uint64_t mix(uint64_t a, uint64_t b)
{
    __extension__ using product_t = unsigned __int128;
    const product_t product = static_cast<product_t>(a) * b;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

// The last 1 to 8 bytes of a name as one number; reads that overlap spare a loop over the bytes.
uint64_t load_tail(const char* bytes, size_t count)
{
    if (count == 8)
        return load<uint64_t>(bytes);
    if (count >= 4)
        return load<uint32_t>(bytes) << 32 | load<uint32_t>(bytes + count - 4);
    if (count == 0)
        return 0;
    return load<uint8_t>(bytes) << 16 | load<uint8_t>(bytes + count / 2) << 8
        | load<uint8_t>(bytes + count - 1);
}

} // namespace

uint32_t ini_hash(std::string_view name)
{
    static const uint64_t seed = make_seed();
    constexpr uint64_t first_factor = 0x9E3779B97F4A7C15; // odd, half of the bits set
    constexpr uint64_t second_factor = 0xD6E8FEB86659FD93;

    const char* bytes = name.data();
    size_t left = name.size();
    uint64_t state = seed ^ left;
    for (; left > 8; left -= 8, bytes += 8)
        state = mix(state ^ load<uint64_t>(bytes), first_factor);
    state = mix(state ^ load_tail(bytes, left), second_factor);
    return static_cast<uint32_t>(state ^ state >> 32);
}

} // namespace rkb
