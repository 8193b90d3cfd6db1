#include "sim/bench/command_words.h"

#include "tools/text/suggestion.h"

#include <charconv>

namespace sim {

std::vector<std::string_view> splitWords(std::string_view line)
{
    constexpr std::string_view kBlanks = " \t\r";
    std::vector<std::string_view> words;
    size_t begin = line.find_first_not_of(kBlanks);
    while (begin != line.npos) {
        const size_t end = line.find_first_of(kBlanks, begin);
        words.push_back(line.substr(begin, end - begin));
        begin = line.find_first_not_of(kBlanks, end);
    }
    return words;
}

std::optional<int> parseNumber(std::string_view text)
{
    constexpr size_t kMaxDigits = 9;
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (text.size() > kMaxDigits || result.ec != std::errc() || result.ptr != end || value < 0)
        return std::nullopt;
    return value;
}

std::optional<std::chrono::milliseconds> parseDuration(std::string_view text)
{
    constexpr double kMaxMs = 86'400'000;
    double factor = 1;
    if (text.ends_with("ms"))
        text.remove_suffix(2);
    else if (text.ends_with('s')) {
        text.remove_suffix(1);
        factor = 1000;
    } else
        return std::nullopt;
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value, std::chars_format::fixed);
    // The comparison is false for a value that is not a number, too.
    if (result.ec != std::errc() || result.ptr != end || !(value >= 0 && value * factor <= kMaxMs))
        return std::nullopt;
    return std::chrono::milliseconds(static_cast<long>(value * factor));
}

std::string durationText(std::chrono::milliseconds duration)
{
    std::string text = std::to_string(duration.count());
    if (duration.count() < 1000)
        return text + " ms";
    std::string fraction = text.substr(text.size() - 3);
    fraction.erase(fraction.find_last_not_of('0') + 1);
    text.resize(text.size() - 3);
    return text + (fraction.empty() ? "" : '.' + fraction) + " s";
}

std::string suggestion(std::string_view word, const std::vector<std::string_view>& candidates)
{
    const std::string_view nearest = text::nearest(word, candidates);
    return nearest.empty() ? "" : "; did you mean " + std::string(nearest) + '?';
}

} // namespace sim
