// Integers as text: pure functions into memory that the caller has made large enough.
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

// Digits of the two hexadecimal modes; null for every other radix.
[[nodiscard]] const char* hex_digits(uint32_t radix);

struct integer_t {
    uint64_t bits; // the value, sign-extended to 64 bits
    size_t bytes;  // width of its type: 1, 2, 4 or 8
    bool negative; // below zero, of a signed type
};

// Bytes to have free before writing an integer of that width: the widest text of its type and one
// more. 0 for an unknown radix.
[[nodiscard]] size_t integer_reserve(uint32_t radix, size_t bytes);

// Writes the integer in a known radix and returns the end of the text; no NUL. Decimal and octal
// have no leading zeros; binary has eight digits per byte, hexadecimal two. Only decimal shows a
// sign, the others show the bits of the type.
char* put_integer(char* to, const integer_t& value, uint32_t radix);

} // namespace rkb
