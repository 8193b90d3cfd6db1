// Compares report/ with the naive reading, for one descriptor.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace naive {

// Reads the descriptor, some reports of every kind and id, and what they are in words. Returns the
// first thing that is not as it should be, with its place, or nothing. Depends on the bytes only.
[[nodiscard]] std::string LayoutDifference(std::span<const uint8_t> descriptor);

} // namespace naive
