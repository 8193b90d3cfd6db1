#include "auxi_number.h"

#include <bit>
#include <cstring>

namespace rkb {

namespace {

constexpr size_t triple_size = 4; // padded, so that an index is a shift

// "000".."999". Built by the compiler: it is there before any initialiser that logs.
constexpr auto triples = [] {
    std::array<char, 1000 * triple_size> table{};
    for (size_t i = 0; i < 1000; ++i) {
        table[i * triple_size] = static_cast<char>('0' + i / 100);
        table[i * triple_size + 1] = static_cast<char>('0' + i / 10 % 10);
        table[i * triple_size + 2] = static_cast<char>('0' + i % 10);
    }
    return table;
}();

const char* triple(uint64_t value)
{
    return &triples[static_cast<size_t>(value) * triple_size];
}

constexpr auto powers_of_ten = [] {
    std::array<uint64_t, 20> table{};
    uint64_t power = 1;
    for (uint64_t& entry : table) {
        entry = power;
        power *= 10;
    }
    return table;
}();

// 1233 / 4096 is just below log10(2): the estimate is the number of digits or one less.
size_t decimal_digits(uint64_t value)
{
    value |= 1; // changes the number of digits of 0 only
    const auto estimate = static_cast<size_t>(std::bit_width(value)) * 1233 >> 12;
    return estimate + (value >= powers_of_ten[estimate] ? 1 : 0);
}

char* put_octal(char* to, uint64_t value)
{
    const auto digits = (static_cast<size_t>(std::bit_width(value | 1)) + 2) / 3;
    for (size_t i = digits; i-- > 0; value >>= 3)
        to[i] = static_cast<char>('0' + (value & 7));
    return to + digits;
}

char* put_binary(char* to, uint64_t bits, size_t bytes)
{
    for (size_t i = bytes * 8; i-- > 0;)
        *to++ = static_cast<char>('0' + (bits >> i & 1));
    return to;
}

char* put_hex(char* to, uint64_t bits, size_t bytes, const char* digits)
{
    for (size_t i = bytes; i-- > 0;)
        to = put_hex_byte(to, static_cast<uint8_t>(bits >> (i * 8)), digits);
    return to;
}

uint64_t of_width(const integer_t& value)
{
    return value.bytes == 8 ? value.bits : value.bits & ((uint64_t{1} << (value.bytes * 8)) - 1);
}

} // namespace

const char* hex_digits(uint32_t radix)
{
    if (radix == radix_hex_upper)
        return "0123456789ABCDEF";
    return radix == radix_hex_lower ? "0123456789abcdef" : nullptr;
}

size_t integer_reserve(uint32_t radix, size_t bytes)
{
    // "-128", "-32768", "-2147483648", "-9223372036854775808", and "377", "177777", ...
    static constexpr std::array<uint8_t, 4> decimal{5, 7, 12, 21};
    static constexpr std::array<uint8_t, 4> octal{4, 7, 12, 23};
    const auto width = static_cast<size_t>(std::countr_zero(bytes));
    switch (radix) {
    case radix_binary:
        return bytes * 8 + 1;
    case radix_octal:
        return octal[width];
    case radix_decimal:
        return decimal[width];
    case radix_hex_upper:
    case radix_hex_lower:
        return bytes * 2 + 1;
    default:
        return 0;
    }
}

char* put_integer(char* to, const integer_t& value, uint32_t radix)
{
    switch (radix) {
    case radix_binary:
        return put_binary(to, value.bits, value.bytes);
    case radix_octal:
        return put_octal(to, of_width(value));
    case radix_decimal:
        if (value.negative)
            *to++ = '-';
        return put_decimal(to, value.negative ? 0 - value.bits : value.bits);
    default:
        return put_hex(to, value.bits, value.bytes, hex_digits(radix));
    }
}

char* put_decimal(char* to, uint64_t value)
{
    char* const end = to + decimal_digits(value);
    char* at = end;
    for (; value >= 100; value /= 100) {
        at -= 2;
        memcpy(at, triple(value % 100) + 1, 2);
    }
    if (value >= 10)
        memcpy(at - 2, triple(value) + 1, 2);
    else
        at[-1] = static_cast<char>('0' + value);
    return end;
}

char* put_hex_byte(char* to, uint8_t byte, const char* digits)
{
    to[0] = digits[byte >> 4];
    to[1] = digits[byte & 15];
    return to + 2;
}

char* put_two_digits(char* to, uint32_t value)
{
    memcpy(to, triple(value % 1000) + 1, 2);
    return to + 2;
}

char* put_three_digits(char* to, uint32_t value)
{
    memcpy(to, triple(value % 1000), 3);
    return to + 3;
}

} // namespace rkb
