// UTF-16, in which USB devices give their names, and UTF-8. Pure.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sim {

// The number of bytes at the front of `text` that are valid UTF-8.
[[nodiscard]] size_t validLength(std::string_view text);

// These give no value for a text that is not valid.
[[nodiscard]] std::optional<std::u16string> utf16(std::string_view utf8);
[[nodiscard]] std::optional<std::string> utf8(std::u16string_view utf16);

} // namespace sim
