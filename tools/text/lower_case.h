// Words in lower case, so that users may write them as they like.
#pragma once

#include <algorithm>
#include <string>

namespace text {

// With the letters A to Z in lower case. Pure.
[[nodiscard]] inline std::string lowerCase(std::string text)
{
    const auto lower
        = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    std::transform(text.begin(), text.end(), text.begin(), lower);
    return text;
}

} // namespace text
