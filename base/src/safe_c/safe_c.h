// Bounded replacements for the platform's memory, string and formatting functions.
//
// Each checks its arguments before it writes anything and, unless its comment says otherwise,
// returns a code of safe_c; on any code but success everything it would have written is as it was.
// A function makes its checks in the order in which its comment lists them. Every rejected call is
// reported as an assert line at FATAL on the base library's module: see log.h. It is rejected all
// the same when nobody logs.
//
// Sizes and counts are in bytes (characters for wide text), and those of buffers include the
// terminating NUL. Nothing is kept between calls, so any thread may call anything on buffers of its
// own. Nothing throws and nothing allocates, apart from what the platform's formatting does.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace rkb {

namespace safe_c {

enum code_t : int {
    success = 0,
    illegal_format = 22,
    null_pointer = 400,
    bad_size = 402,
    over_limit = 403,
    overlap = 404,
    no_space = 406,
    not_found = 409,
};

inline constexpr size_t max_memory_size = 104'857'600; // what memory functions take as a size
inline constexpr size_t max_string_size = 65'536;      // what string and formatting functions take

} // namespace safe_c

// Compares the first `smax` bytes. `*diff` receives the first unequal byte of `dest` minus that of
// `src`, both taken as unsigned, or 0. null_pointer, for `diff` too; bad_size when a size is 0 or
// `dmax` < `smax`; over_limit.
int memcmp_s(const void* dest, size_t dmax, const void* src, size_t smax, int* diff);

// Copies `count` bytes. null_pointer; bad_size when `destsz` or `count` is 0; over_limit;
// no_space when `destsz` < `count`; overlap unless all of `src` lies before or behind the whole
// destination, that is all its `destsz` bytes.
int memcpy_s(void* dest, size_t destsz, const void* src, size_t count);

// memcpy_s for ranges that may overlap.
int memmove_s(void* dest, size_t destsz, const void* src, size_t count);

// Sets `count` bytes to the low byte of `value`. Codes as memmove_s.
int memset_s(void* dest, size_t destsz, int value, size_t count);

// The length of `str`, of which at most `strsz` bytes are read. 0 when `strsz` is over
// max_string_size and for null. `strsz` when no NUL lies within it, which is reported too.
size_t strnlen_s(const char* str, size_t strsz);

// The length of `str`, of which at most `strsz` characters are read. 0 when `strsz` is over
// max_string_size and for null. `strsz` when no NUL lies within it.
size_t wcsnlen_s(const wchar_t* str, size_t strsz);

// Copies the NUL-terminated `src`, of which at most `destsz` bytes are read, into `dest`.
// null_pointer; bad_size when `destsz` is 0; over_limit; overlap when the bytes to be read and
// those to be written share one (a copy onto itself does); no_space when `src` is longer than
// `destsz` - 1.
int strcpy_s(char* dest, size_t destsz, const char* src);

// Copies at most `count` characters of `src` and a NUL; at most the smaller of `destsz` and
// `count` bytes of `src` are read. null_pointer; over_limit, for `count` too; bad_size when one of
// them is 0; no_space; overlap when the bytes to be read and those to be written share one.
int strncpy_s(char* dest, size_t destsz, const char* src, size_t count);

// Appends the NUL-terminated `src`, of which at most `destsz` bytes are read, to the text in
// `dest`. null_pointer; over_limit; no_space when `dest` holds no NUL or too little room behind
// its text; overlap when the bytes to be read and those to be written share one.
int strcat_s(char* dest, size_t destsz, const char* src);

// Cuts the next token out of `str`, or of what `*ptr` says an earlier call left when `str` is null:
// skips characters of `delim`, replaces the one behind the token with a NUL and stores in `*ptr`
// where to go on. Null when there is no token left, and when the call is rejected: for a `strmax`
// over max_string_size, a null `delim` or `ptr`, or both `str` and `*ptr` null. At most `strmax`
// bytes from where the call begins are read; when neither a NUL nor the end of a token is among
// them the call is rejected and `*ptr` is null.
char* strtok_s(char* str, size_t strmax, const char* delim, char** ptr);

// These format as printf does and return the length of the text, or the negated code; a negative
// result of the platform's vsnprintf is passed on as it is. When a text does not fit, as much of it
// as fits is in the buffer, NUL-terminated, whichever the result.
//
// null_pointer; over_limit; bad_size when `bufsz` is 0; no_space when the text does not fit.
[[gnu::format(printf, 3, 4)]] int sprintf_s(char* buffer, size_t bufsz, const char* format, ...);
[[gnu::format(printf, 3, 4)]] int snprintf_s(char* buffer, size_t bufsz, const char* format, ...);

// null_pointer; illegal_format; no_space when the text does not fit, so always when `size` is 0.
// There is no limit to `size`. Illegal is a first "%n" that no "%" precedes: a narrow test on
// purpose, which finds neither a later one nor one with flags.
[[gnu::format(printf, 3, 0)]] int vsprintf_s(
    char* dst, size_t size, const char* format, va_list args);

// null_pointer, also when `size` is 0; over_limit; illegal_format as vsprintf_s. The result is the
// length the whole text would have: it was cut when that is not below `size`.
[[gnu::format(printf, 3, 0)]] int vsnprintf_s(
    char* dst, size_t size, const char* format, va_list args);

// Scans as sscanf does, with its result. -1 when `src` or `format` is null.
[[gnu::format(scanf, 2, 3)]] int sscanf_s(const char* src, const char* format, ...);

// Copies the value of the environment variable `name`, and its length without the NUL to `*len`.
// bad_size when a pointer is null or `valuesz` below 2; null_pointer when the process has no
// environment; not_found; no_space when value and NUL exceed `valuesz`. No other thread may change
// the environment meanwhile.
int getenv_s(size_t* len, char* value, size_t valuesz, const char* name);

} // namespace rkb
