// The meaning of one line of an ini file. Pure: bytes in, views of them out.
#pragma once

#include <string_view>

namespace rkb {

// What a line says. The views point into the line.
struct ini_line_t {
    enum kind_t {
        ignored,     // nothing to keep
        unprintable, // ends the whole file: see ini_line_is_unprintable
        key,         // `name` and `value`, both trimmed
        section,     // `name`, not trimmed
        comment,     // `name` is the text behind the comment character
    };

    kind_t kind = ignored;
    std::string_view name;
    std::string_view value;
};

// True when a line that begins with the byte `first` ends the parse: anything but the printable
// characters of ASCII, in every locale. Strict on purpose, as it is what tells a binary file.
constexpr bool ini_line_is_unprintable(char first)
{
    return first < ' ' || first > '~';
}

// `line` is one line without its "\n"; a trailing "\r" is not part of its meaning. The first of
// the characters ";#[=" decides what the line is. There is no quoting: a value ends at the first
// ";" or "#", whatever stands around it.
ini_line_t parse_ini_line(std::string_view line);

} // namespace rkb
