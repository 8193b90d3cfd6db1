// The words of a command line for the bench. Pure.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

// The words between blanks.
[[nodiscard]] std::vector<std::string_view> splitWords(std::string_view line);

// A number from 0 to 999999999; no value for any other text.
[[nodiscard]] std::optional<int> parseNumber(std::string_view text);

// "500ms", "2s", "1.5s"; at most a day. Parts of a millisecond are dropped. No value for any other
// text.
[[nodiscard]] std::optional<std::chrono::milliseconds> parseDuration(std::string_view text);

// "200 ms", "1.5 s".
[[nodiscard]] std::string durationText(std::chrono::milliseconds duration);

// "; did you mean NEAREST?", or an empty text if no candidate is near.
[[nodiscard]] std::string suggestion(
    std::string_view word, const std::vector<std::string_view>& candidates);

} // namespace sim
