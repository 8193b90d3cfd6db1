#include "tools/text/printable.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace text {
namespace {

constexpr uint32_t kLastOfOneByte = 0x7f;
constexpr uint32_t kFirstOfSize[] = {0, 0, 0x80, 0x800, 0x10000}; // by number of bytes
constexpr uint32_t kLastCodePoint = 0x10ffff;

bool isSurrogate(uint32_t code)
{
    return code >= 0xd800 && code <= 0xdfff;
}

// C0, DEL and C1 control characters, and those that reverse the direction of the text after them.
bool isControl(uint32_t code)
{
    return code < 0x20 || (code >= 0x7f && code <= 0x9f) || (code >= 0x202a && code <= 0x202e)
        || (code >= 0x2066 && code <= 0x2069) || code == 0x2028 || code == 0x2029;
}

// The number of bytes that a sequence with this first byte has; 0 if none begins with it.
size_t announcedSize(uint8_t first)
{
    if (first <= kLastOfOneByte)
        return 1;
    if ((first & 0xe0) == 0xc0)
        return 2;
    if ((first & 0xf0) == 0xe0)
        return 3;
    return (first & 0xf8) == 0xf0 ? 4 : 0;
}

// The size in bytes of the printable character at the beginning of `text`, 0 if there is none.
size_t printableSize(std::string_view text)
{
    const auto first = static_cast<uint8_t>(text.front());
    const size_t size = announcedSize(first);
    if (size == 0 || size > text.size())
        return 0;
    uint32_t code = size == 1 ? first : first & (0x7fU >> size);
    for (const char c : text.substr(1, size - 1)) {
        const auto byte = static_cast<uint8_t>(c);
        if ((byte & 0xc0) != 0x80)
            return 0;
        code = code << 6 | (byte & 0x3fU);
    }
    const bool valid = code >= kFirstOfSize[size] && code <= kLastCodePoint && !isSurrogate(code);
    return valid && !isControl(code) ? size : 0;
}

} // namespace

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        size_t size = printableSize(text);
        if (size > 0) {
            result += text.substr(0, size);
        } else {
            size = 1;
            std::array<char, 8> code{};
            const unsigned byte = static_cast<uint8_t>(text.front());
            std::snprintf(code.data(), code.size(), "\\x%02x", byte);
            result += code.data();
        }
        text.remove_prefix(size);
    }
    return result;
}

} // namespace text
