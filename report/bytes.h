// Bytes, and their text form "03 08 00".
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace report {

using Bytes = std::vector<uint8_t>;

// Two lower-case digits a byte, with `separator` between bytes.
[[nodiscard]] std::string toHex(std::span<const uint8_t> bytes, std::string_view separator = " ");

// Pairs of digits, with any number of blanks between pairs. No value for other text.
[[nodiscard]] std::optional<Bytes> fromHex(std::string_view text);

} // namespace report
