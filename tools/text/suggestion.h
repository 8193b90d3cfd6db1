// Suggestions for mistyped words.
#pragma once

#include <span>
#include <string_view>

namespace text {

// Returns the candidate that is the fewest changes away from `word`, the first one of several. A
// change replaces, adds, removes or swaps characters. Empty if every candidate needs at least half
// as many changes as it has characters. Pure.
std::string_view nearest(std::string_view word, std::span<const std::string_view> candidates);

} // namespace text
