// JSON text, read strictly: no comments, no key twice, nothing after the value.
#pragma once

#include <json/value.h>

#include <string>
#include <string_view>

namespace sim {

// Deeper nesting is refused.
inline constexpr size_t kMaxJsonDepth = 16;

// UTF-8 may begin with such a mark.
[[nodiscard]] std::string_view withoutByteOrderMark(std::string_view text);

// A byte order mark is skipped. Throws ProfileError with the first mistake, "FILE:LINE:COLUMN: KEY:
// expected ..., found ...", where KEY is the path of the innermost value around the place:
// "interfaces[1].number". Takes any text.
[[nodiscard]] Json::Value parseJson(std::string_view text, const std::string& file);

} // namespace sim
