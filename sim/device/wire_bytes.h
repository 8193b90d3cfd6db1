// Bytes as on the bus, and their text form "03 08 00".
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

using Bytes = std::vector<uint8_t>;

// Two lower-case digits a byte, with one blank between bytes.
std::string toHex(std::span<const uint8_t> bytes);

// Pairs of digits, with any number of blanks between pairs. No value for other text.
[[nodiscard]] std::optional<Bytes> fromHex(std::string_view text);

constexpr uint8_t lowByte(size_t value)
{
    return static_cast<uint8_t>(value & 0xff);
}

constexpr uint8_t highByte(size_t value)
{
    return static_cast<uint8_t>((value >> 8) & 0xff);
}

} // namespace sim
