// The characters of a text that should be UTF-8 but may be any bytes. Pure.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace text {

struct Character {
    size_t size = 0; // in bytes; 0 if the text does not begin with a valid character
    uint32_t code = 0;
};

// The first character of a text that is not empty.
[[nodiscard]] Character firstCharacter(std::string_view text);

// The text with each byte that is not valid UTF-8 replaced by U+FFFD.
[[nodiscard]] std::string validUtf8(std::string_view text);

// The number of columns that a terminal needs: two for a wide character, as those of East Asia, and
// none for one that is combined with the character before it.
[[nodiscard]] size_t columns(std::string_view text);

// The beginning of the text that needs at most this number of columns.
[[nodiscard]] std::string_view firstColumns(std::string_view text, size_t columns);

} // namespace text
