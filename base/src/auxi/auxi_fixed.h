// Floating-point numbers with two decimals: exact, pure, independent of locale and rounding mode.
#pragma once

#include <cstddef>

namespace rkb {

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
