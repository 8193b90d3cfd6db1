#include "base/src/auxi/auxi_number.h"

#include "base/src/auxi/auxi_digits.h"

#include <array>
#include <bit>

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

uint64_t of_width(const integer_t& value)
{
    return value.bytes == 8 ? value.bits : value.bits & ((uint64_t{1} << (value.bytes * 8)) - 1);
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

} // namespace rkb
