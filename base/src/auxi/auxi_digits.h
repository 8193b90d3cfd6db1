// Digits from tables: the innermost loops of formatting. Inline, because they are most of its cost.
#pragma once

#include <array>
#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace rkb {

inline constexpr size_t digit_triple_size = 4; // padded, so that an index is a shift

// "000".."999". Built by the compiler, so that static initialisers can log.
inline constexpr auto digit_triples = [] {
    std::array<char, 1000 * digit_triple_size> table{};
    for (size_t i = 0; i < 1000; ++i) {
        table[i * digit_triple_size] = static_cast<char>('0' + i / 100);
        table[i * digit_triple_size + 1] = static_cast<char>('0' + i / 10 % 10);
        table[i * digit_triple_size + 2] = static_cast<char>('0' + i % 10);
    }
    return table;
}();

inline constexpr auto powers_of_ten = [] {
    std::array<uint64_t, 20> table{};
    uint64_t power = 1;
    for (uint64_t& entry : table) {
        entry = power;
        power *= 10;
    }
    return table;
}();

inline constexpr const char* hex_upper = "0123456789ABCDEF";
inline constexpr const char* hex_lower = "0123456789abcdef";

// The three digits of `value`, which is below 1000, with leading zeros.
inline const char* digit_triple(uint64_t value)
{
    assert(value < 1000);
    return &digit_triples[static_cast<size_t>(value) * digit_triple_size];
}

// 1233 / 4096 is just below log10(2): the estimate is the number of digits or one less.
inline size_t decimal_digits(uint64_t value)
{
    value |= 1; // changes the number of digits of 0 only
    const auto estimate = static_cast<size_t>(std::bit_width(value)) * 1233 >> 12;
    return estimate + (value >= powers_of_ten[estimate] ? 1 : 0);
}

// This and the next three functions return the end of the text and write no NUL.
inline char* put_decimal(char* to, uint64_t value)
{
    char* const end = to + decimal_digits(value);
    char* at = end;
    for (; value >= 100; value /= 100) {
        at -= 2;
        memcpy(at, digit_triple(value % 100) + 1, 2);
    }
    if (value >= 10)
        memcpy(at - 2, digit_triple(value) + 1, 2);
    else
        at[-1] = static_cast<char>('0' + value);
    return end;
}

// The last two and all three digits of `value` modulo 1000, with leading zeros.
inline char* put_two_digits(char* to, uint32_t value)
{
    memcpy(to, digit_triple(value % 1000) + 1, 2);
    return to + 2;
}

inline char* put_three_digits(char* to, uint32_t value)
{
    memcpy(to, digit_triple(value % 1000), 3);
    return to + 3;
}

inline char* put_hex_byte(char* to, uint8_t byte, const char* digits)
{
    to[0] = digits[byte >> 4];
    to[1] = digits[byte & 15];
    return to + 2;
}

} // namespace rkb
