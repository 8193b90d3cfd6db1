// The meaning of one line of an ini file. Pure: bytes in, views of them out.
#pragma once

#include <string_view>

namespace rkb {

// What a line means. The views point into the line.
struct ini_line_t {
    enum kind_t {
        ignored,     // nothing to keep
        unprintable, // reading stops here: see ini_line_is_unprintable
        key,         // `name` and `value`, both trimmed
        section,     // `name`, not trimmed
        comment,     // `name` is the text after the comment character, not trimmed
    };

    kind_t kind = ignored;
    std::string_view name;
    std::string_view value;
};

// Whether a line that begins with `first` stops the reading of its file: true for everything but
// the printable ASCII characters, whatever the locale. This is deliberately strict, to reject
// binary files.
constexpr bool ini_line_is_unprintable(char first)
{
    return first < ' ' || first > '~';
}

// `line` is one line without its "\n"; one trailing "\r" is ignored. The first of the characters
// ";#[=" decides the kind of the line. There is no quoting: a value always ends at the first ";" or
// "#".
ini_line_t parse_ini_line(std::string_view line);

} // namespace rkb
