// Errors of text readers.
#pragma once

#include "fuzz/require.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

// Requires "f:LINE:COLUMN: ..." with a place in `text` or at its end. UTF-16 has no such place.
inline void RequirePlace(const std::string& error, std::string_view text)
{
    if (error == "f: a text in UTF-16; save it as UTF-8") {
        Require(text.starts_with("\xfe\xff") || text.starts_with("\xff\xfe"));
        return;
    }
    Require(error.starts_with("f:"));
    char* end = nullptr;
    const unsigned long line = std::strtoul(&error[2], &end, 10);
    Require(line >= 1 && *end == ':');
    const unsigned long column = std::strtoul(end + 1, &end, 10);
    Require(column >= 1 && std::string_view(end).starts_with(": "));
    for (unsigned long i = 1; i < line; ++i) {
        const size_t lineEnd = text.find('\n');
        Require(lineEnd != text.npos);
        text.remove_prefix(lineEnd + 1);
    }
    Require(column - 1 <= std::min(text.find('\n'), text.size()));
}
