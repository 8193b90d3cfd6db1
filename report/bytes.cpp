#include "report/bytes.h"

#include <charconv>

namespace report {

std::string toHex(std::span<const uint8_t> bytes, std::string_view separator)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : bytes) {
        if (!text.empty())
            text += separator;
        text += digits[byte >> 4];
        text += digits[byte & 0xf];
    }
    return text;
}

std::optional<Bytes> fromHex(std::string_view text)
{
    Bytes bytes;
    while (!text.empty()) {
        if (text.front() == ' ') {
            text.remove_prefix(1);
            continue;
        }
        const std::string_view pair = text.substr(0, 2);
        unsigned value = 0;
        const char* const end = pair.data() + pair.size();
        const auto result = std::from_chars(pair.data(), end, value, 16);
        if (pair.size() != 2 || result.ec != std::errc() || result.ptr != end)
            return std::nullopt;
        bytes.push_back(static_cast<uint8_t>(value));
        text.remove_prefix(2);
    }
    return bytes;
}

} // namespace report
