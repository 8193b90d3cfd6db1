// Bounded replacements for the platform's string functions.
//
// Each checks its arguments before it writes anything and returns a code of safe_c: on any code
// but success the destination is as it was. A function makes its checks in the order in which
// its comment lists the codes. Sizes count bytes and include the terminating NUL. Nothing is kept
// between calls, so any thread may call anything on buffers of its own; nothing throws.
#pragma once

#include <cstddef>

namespace rkb {

namespace safe_c {

enum code_t : int {
    success = 0,
    null_pointer = 400,
    bad_size = 402,
    over_limit = 403,
    overlap = 404,
    no_space = 406,
};

inline constexpr size_t max_string_size = 65'536;

} // namespace safe_c

// Copies the NUL-terminated `src`, of which at most `destsz` bytes are read, into `dest`.
// null_pointer; bad_size when destsz is 0; over_limit; overlap when the bytes to be read and those
// to be written share one (a copy onto itself does); no_space when `src` is longer than destsz - 1.
int strcpy_s(char* dest, size_t destsz, const char* src);

// Appends the NUL-terminated `src`, of which at most `destsz` bytes are read, to the text in
// `dest`. null_pointer; over_limit; no_space when `dest` holds no NUL or too little room behind its
// text; overlap when the bytes to be read and those to be written share one.
int strcat_s(char* dest, size_t destsz, const char* src);

} // namespace rkb
