// Numbers as text: pure functions that write into memory which the caller has made large enough.
// They do not depend on the locale or the rounding mode.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rkb {

// The values of a text stream's radix mode.
inline constexpr uint32_t radix_binary = 2;
inline constexpr uint32_t radix_octal = 8;
inline constexpr uint32_t radix_decimal = 10;
inline constexpr uint32_t radix_hex_upper = 16;
inline constexpr uint32_t radix_hex_lower = 256;

// The digits of a hexadecimal mode; null for any other radix.
[[nodiscard]] const char* hex_digits(uint32_t radix);

struct integer_t {
    uint64_t bits; // the value, sign-extended to 64 bits
    size_t bytes;  // width of its type: 1, 2, 4 or 8
    bool negative; // below zero; false for unsigned types
};

// The bytes that must be free to write an integer of a type with that many bytes (1, 2, 4 or 8):
// the length of the type's widest text plus one. 0 for an unknown radix.
[[nodiscard]] size_t integer_reserve(uint32_t radix, size_t bytes);

// Writes the integer in a known radix and returns the end of the text; writes no NUL. Decimal and
// octal texts have no leading zeros. Binary texts have eight digits per byte, hexadecimal ones two.
// Only decimal texts have a sign; the others show the bits of the type.
char* put_integer(char* to, const integer_t& value, uint32_t radix);

// The largest magnitudes that the short form of a float and of a double is used for, and the bytes
// that must be free for it: the length of "-2147483648.00" or "-9223372036854775808.00" plus one.
inline constexpr double ftoa_limit = 2147483648.0;
inline constexpr double lftoa_limit = 9223372036854775808.0;
inline constexpr size_t ftoa_reserve = 15;
inline constexpr size_t lftoa_reserve = 24;

// The bytes that must be free for the long form: the largest float has 39 digits before the point,
// the largest double 309.
inline constexpr size_t float_reserve = 43;
inline constexpr size_t double_reserve = 313;

// Writes `value` with two decimals as "%.2f" does: rounded to nearest, ties to the even digit,
// negative numbers that round to zero as "-0.00". Returns the end of the text; writes no NUL.
// Returns null and writes nothing if the magnitude is above `limit` or `value` is not a number.
// `limit` is at most lftoa_limit.
[[nodiscard]] char* put_fixed(char* to, double value, double limit);

// Writes a positive number of any size, or infinity, as "%.2f" does. Returns the end of the text;
// writes no NUL. `room` is at least double_reserve, or float_reserve if `value` is that of a float.
char* put_fixed_large(char* to, size_t room, double value);

} // namespace rkb
