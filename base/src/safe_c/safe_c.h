// Bounded replacements for the platform's memory, string and formatting functions.
//
// Unless its comment says otherwise, a function returns one of the codes below. It checks its
// arguments in the order in which its comment lists the codes, before it writes anything: with any
// code but success nothing has been written. Each rejected call is also logged as an assert line at
// FATAL on the base library's module (see log.h), if that is enabled.
//
// Sizes and counts are in bytes (characters for wide text). The size of a buffer includes the
// terminating NUL. The functions keep no state, so threads may call them on different buffers at
// once. They do not throw. They do not allocate, except for what the platform's formatting does.
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

inline constexpr size_t max_memory_size = 104'857'600; // limit of the memory functions
inline constexpr size_t max_string_size = 65'536; // limit of the string and formatting functions

} // namespace safe_c

// Compares the first `smax` bytes. `*diff` receives the difference of the first unequal bytes, that
// of `dest` minus that of `src`, both unsigned; or 0. null_pointer, also for `diff`; bad_size if a
// size is 0 or `dmax` < `smax`; over_limit.
int memcmp_s(const void* dest, size_t dmax, const void* src, size_t smax, int* diff);

// Copies `count` bytes. null_pointer; bad_size if `destsz` or `count` is 0; over_limit; no_space if
// `destsz` < `count`; overlap if one of the `count` bytes of `src` is one of the `destsz` bytes of
// `dest`.
int memcpy_s(void* dest, size_t destsz, const void* src, size_t count);

// memcpy_s() for ranges that may overlap.
int memmove_s(void* dest, size_t destsz, const void* src, size_t count);

// Sets `count` bytes to the low byte of `value`. Same codes as memmove_s().
int memset_s(void* dest, size_t destsz, int value, size_t count);

// Returns the length of `str` and reads at most `strsz` bytes. Returns 0 if `strsz` is above
// max_string_size or `str` is null, and `strsz` if there is no NUL within it; these cases are
// logged.
size_t strnlen_s(const char* str, size_t strsz);

// Returns the length of `str` and reads at most `strsz` characters. Returns 0 if `strsz` is above
// max_string_size or `str` is null; these cases are logged. Returns `strsz` if there is no NUL
// within it.
size_t wcsnlen_s(const wchar_t* str, size_t strsz);

// Copies the NUL-terminated `src` into `dest`; reads at most `destsz` bytes. null_pointer; bad_size
// if `destsz` is 0; over_limit; overlap if the bytes to be read and those to be written have one in
// common, as in a copy onto itself; no_space if `src` is longer than `destsz` - 1.
int strcpy_s(char* dest, size_t destsz, const char* src);

// Copies at most `count` characters of `src`, and a NUL; reads at most `destsz` and at most `count`
// bytes. null_pointer; over_limit, also for `count`; bad_size if one of the two is 0; no_space;
// overlap as in strcpy_s().
int strncpy_s(char* dest, size_t destsz, const char* src, size_t count);

// Appends the NUL-terminated `src` to the text in `dest`; reads at most `destsz` bytes of `src`.
// null_pointer; over_limit; no_space if `dest` holds no NUL or has too little room after its text;
// overlap as in strcpy_s().
int strcat_s(char* dest, size_t destsz, const char* src);

// Returns the next token of `str`, or, if `str` is null, of the text at `*ptr`, where an earlier
// call stopped. Skips characters of `delim`, replaces the one after the token with a NUL and stores
// in `*ptr` where the next call continues. Returns null if no token is left or the call is
// rejected: `strmax` is above max_string_size, `delim` or `ptr` is null, or both `str` and `*ptr`
// are null. Reads at most `strmax` bytes. If neither a NUL nor the end of a token is among them,
// rejects the call and sets `*ptr` to null.
char* strtok_s(char* str, size_t strmax, const char* delim, char** ptr);

// The next four functions format as printf() does. They return the length of the text or a negated
// code; a negative result of the platform's vsnprintf() is returned unchanged. If the text does not
// fit, the buffer holds as much of it as fits, NUL-terminated, whatever the result.

// null_pointer; over_limit; bad_size if `bufsz` is 0; no_space if the text does not fit.
[[gnu::format(printf, 3, 4)]] int sprintf_s(char* buffer, size_t bufsz, const char* format, ...);
[[gnu::format(printf, 3, 4)]] int snprintf_s(char* buffer, size_t bufsz, const char* format, ...);

// null_pointer; illegal_format; no_space if the text does not fit, so always if `size` is 0. `size`
// has no limit. A format is illegal if there is no "%" directly before its first "%n". This test is
// deliberately narrow: it finds no later "%n" and none with flags.
[[gnu::format(printf, 3, 0)]] int vsprintf_s(
    char* dst, size_t size, const char* format, va_list args);

// null_pointer, also if `size` is 0; over_limit; illegal_format as in vsprintf_s(). Returns the
// length of the whole text; it has been cut if that is not below `size`.
[[gnu::format(printf, 3, 0)]] int vsnprintf_s(
    char* dst, size_t size, const char* format, va_list args);

// Scans as sscanf() does and returns its result. -1 if `src` or `format` is null.
[[gnu::format(scanf, 2, 3)]] int sscanf_s(const char* src, const char* format, ...);

// Copies the value of the environment variable `name` to `value`, and its length without the NUL to
// `*len`. bad_size if a pointer is null or `valuesz` below 2; null_pointer if the process has no
// environment; not_found; no_space if the value and its NUL need more than `valuesz`. No other
// thread may change the environment meanwhile.
int getenv_s(size_t* len, char* value, size_t valuesz, const char* name);

} // namespace rkb
