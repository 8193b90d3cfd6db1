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
// octal texts have no leading zeros, binary ones eight digits per byte, hexadecimal ones two. Only
// decimal has a sign; the others show the bits of the type.
char* put_integer(char* to, const integer_t& value, uint32_t radix);

// Largest magnitudes of the fixed-point routine, and the room that its text needs with one byte
// more: "-2147483648.00" and "-9223372036854775808.00".
inline constexpr double ftoa_limit = 2147483648.0;
inline constexpr double lftoa_limit = 9223372036854775808.0;
inline constexpr size_t ftoa_reserve = 15;
inline constexpr size_t lftoa_reserve = 24;

// The same for "%.2f" of the largest float (39 digits) and double (309 digits).
inline constexpr size_t float_reserve = 43;
inline constexpr size_t double_reserve = 313;

// Writes `value` as "%.2f" does (the nearest, a tie to the even digit, "-0.00" for what rounds to
// zero from below) and returns the end of the text; no NUL. Returns null, nothing written, when
// the magnitude is above `limit`, which is at most lftoa_limit, or when it is not a number.
[[nodiscard]] char* put_fixed(char* to, double value, double limit);

// Writes a positive number of any size, infinity included, as "%.2f" does. `room` is at least
// double_reserve, for values that are floats float_reserve.
char* put_fixed_large(char* to, size_t room, double value);

} // namespace rkb
