// Suggestions for mistyped words.
#pragma once

#include <span>
#include <string_view>

namespace text {

// Returns the candidate that takes the fewest changed, added, removed and swapped characters to
// get from `word`, the first of several; empty if none takes fewer than half of its characters.
// Pure.
std::string_view nearest(std::string_view word, std::span<const std::string_view> candidates);

} // namespace text
