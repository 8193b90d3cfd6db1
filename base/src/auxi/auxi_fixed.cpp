#include "base/src/auxi/auxi_fixed.h"

#include "base/src/auxi/auxi_digits.h"

#include <bit>
#include <charconv>
#include <cstdint>

namespace rkb {

namespace {

// An IEEE 754 double of magnitude up to 2^63 in parts: significand * 2^-shift.
struct parts_t {
    uint64_t significand;
    int shift; // -11 .. 1074
};

constexpr int fraction_bits = 52;
constexpr uint64_t fraction_mask = (uint64_t{1} << fraction_bits) - 1;

parts_t parts_of(double magnitude)
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

char* put_fixed(char* to, double value, double limit)
{
    const bool negative = std::bit_cast<int64_t>(value) < 0;
    const double magnitude = negative ? -value : value;
    if (!(magnitude <= limit))
        return nullptr;
    const hundredths_t number = hundredths(parts_of(magnitude));
    if (negative)
        *to++ = '-';
    to = put_decimal(to, number.whole);
    *to++ = '.';
    return put_two_digits(to, number.cents);
}

char* put_fixed_large(char* to, size_t room, double value)
{
    return std::to_chars(to, to + room, value, std::chars_format::fixed, 2).ptr;
}

} // namespace rkb
