#include "base/src/auxi/auxi_number.h"

#include "base/src/auxi/auxi_digits.h"

#include <array>
#include <bit>
#include <cassert>
#include <charconv>

namespace rkb {

namespace {

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

uint64_t cut_to_type(const integer_t& value)
{
    return value.bytes == 8 ? value.bits : value.bits & ((uint64_t{1} << (value.bytes * 8)) - 1);
}

// A double of magnitude up to 2^63 is significand * 2^-shift.
struct parts_t {
    uint64_t significand;
    int shift; // -11 .. 1074
};

constexpr int fraction_bits = 52;
constexpr uint64_t fraction_mask = (uint64_t{1} << fraction_bits) - 1;

parts_t split(double magnitude)
{
    const auto bits = std::bit_cast<uint64_t>(magnitude);
    const int exponent = static_cast<int>(bits >> fraction_bits & 0x7FF);
    const uint64_t fraction = bits & fraction_mask;
    if (exponent == 0)
        return {fraction, 1074};
    return {fraction | (fraction_mask + 1), 1075 - exponent};
}

struct hundredths_t {
    uint64_t whole;
    uint32_t cents;
};

// Hundredths of fraction / 2^shift, shift in 1..60, rounded half to even.
uint32_t rounded_cents(uint64_t fraction, int shift)
{
    assert(shift >= 1 && shift <= 60);
    const uint64_t scaled = fraction * 100; // below 2^53 * 100, so it fits
    const uint64_t rest = scaled & ((uint64_t{1} << shift) - 1);
    const uint64_t half = uint64_t{1} << (shift - 1);
    const auto cents = static_cast<uint32_t>(scaled >> shift);
    return cents + ((rest > half || (rest == half && cents % 2 == 1)) ? 1 : 0);
}

hundredths_t hundredths(const parts_t& parts)
{
    if (parts.shift <= 0)
        return {parts.significand << -parts.shift, 0};
    if (parts.shift > 60) // below 2^-8, which is less than half a hundredth
        return {0, 0};
    const uint64_t whole = parts.significand >> parts.shift;
    const uint64_t fraction = parts.significand - (whole << parts.shift);
    const uint32_t cents = rounded_cents(fraction, parts.shift);
    return cents == 100 ? hundredths_t{whole + 1, 0} : hundredths_t{whole, cents};
}

} // namespace

const char* hex_digits(uint32_t radix)
{
    if (radix == radix_hex_upper)
        return hex_upper;
    return radix == radix_hex_lower ? hex_lower : nullptr;
}

size_t integer_reserve(uint32_t radix, size_t bytes)
{
    // "-128", "-32768", "-2147483648", "-9223372036854775808", and "377", "177777", ...
    static constexpr std::array<uint8_t, 4> decimal{5, 7, 12, 21};
    static constexpr std::array<uint8_t, 4> octal{4, 7, 12, 23};
    assert(std::has_single_bit(bytes) && bytes <= 8);
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
        return put_octal(to, cut_to_type(value));
    case radix_decimal:
        if (value.negative)
            *to++ = '-';
        return put_decimal(to, value.negative ? 0 - value.bits : value.bits);
    default:
        assert(hex_digits(radix));
        return put_hex(to, value.bits, value.bytes, hex_digits(radix));
    }
}

char* put_fixed(char* to, double value, double limit)
{
    assert(limit <= lftoa_limit);
    const bool negative = std::bit_cast<int64_t>(value) < 0;
    const double magnitude = negative ? -value : value;
    if (!(magnitude <= limit))
        return nullptr;
    const hundredths_t number = hundredths(split(magnitude));
    if (negative)
        *to++ = '-';
    to = put_decimal(to, number.whole);
    *to++ = '.';
    return put_two_digits(to, number.cents);
}

char* put_fixed_large(char* to, size_t room, double value)
{
    const auto [end, error] = std::to_chars(to, to + room, value, std::chars_format::fixed, 2);
    assert(error == std::errc{});
    return end;
}

} // namespace rkb
