#include "tools/text/utf8.h"

#include <algorithm>
#include <iterator>

namespace text {
namespace {

constexpr uint32_t kLastOfOneByte = 0x7f;
constexpr uint32_t kFirstOfSize[] = {0, 0, 0x80, 0x800, 0x10000}; // by number of bytes
constexpr uint32_t kLastCodePoint = 0x10ffff;
constexpr std::string_view kReplacement = "\xef\xbf\xbd"; // U+FFFD

struct Range {
    uint32_t first;
    uint32_t last;
};

// Blocks, which is exact enough for columns. In ascending order.
constexpr Range kCombined[] = {
    {0x0300, 0x036f}, // combining marks
    {0x0483, 0x0489}, // Cyrillic
    {0x0591, 0x05bd}, // Hebrew
    {0x0610, 0x061a}, // Arabic
    {0x064b, 0x065f},
    {0x1ab0, 0x1aff}, // combining marks
    {0x1dc0, 0x1dff},
    {0x200b, 0x200f}, // zero-width spaces and joiners, direction marks
    {0x20d0, 0x20ff}, // combining marks
    {0xfe00, 0xfe0f}, // variation selectors
    {0xfe20, 0xfe2f}, // combining marks
    {0xe0100, 0xe01ef},
};
constexpr Range kWide[] = {
    {0x1100, 0x115f},   // Hangul
    {0x2e80, 0x303e},   // CJK radicals, punctuation
    {0x3041, 0xa4cf},   // kana, CJK ideographs, Yi
    {0xa960, 0xa97f},   // Hangul
    {0xac00, 0xd7a3},   // Hangul syllables
    {0xf900, 0xfaff},   // CJK ideographs
    {0xfe30, 0xfe6f},   // CJK forms
    {0xff00, 0xff60},   // full-width forms
    {0xffe0, 0xffe6},   // full-width forms
    {0x1f300, 0x1f64f}, // pictographs
    {0x1f680, 0x1f6ff}, // pictographs
    {0x1f900, 0x1f9ff}, // pictographs
    {0x20000, 0x3fffd}, // CJK ideographs
};

template <size_t size>
bool contains(const Range (&ranges)[size], uint32_t code)
{
    const auto* const found = std::find_if(std::begin(ranges), std::end(ranges),
        [code](const Range& range) { return code <= range.last; });
    return found != std::end(ranges) && code >= found->first;
}

size_t columnsOf(uint32_t code)
{
    if (contains(kCombined, code))
        return 0;
    return contains(kWide, code) ? 2 : 1;
}

bool isSurrogate(uint32_t code)
{
    return code >= 0xd800 && code <= 0xdfff;
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

} // namespace

Character firstCharacter(std::string_view text)
{
    const auto first = static_cast<uint8_t>(text.front());
    const size_t size = announcedSize(first);
    if (size == 0 || size > text.size())
        return {};
    uint32_t code = size == 1 ? first : first & (0x7fU >> size);
    for (const char c : text.substr(1, size - 1)) {
        const auto byte = static_cast<uint8_t>(c);
        if ((byte & 0xc0) != 0x80)
            return {};
        code = code << 6 | (byte & 0x3fU);
    }
    const bool valid = code >= kFirstOfSize[size] && code <= kLastCodePoint && !isSurrogate(code);
    return valid ? Character{size, code} : Character{};
}

std::string validUtf8(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const size_t size = firstCharacter(text).size;
        result += size > 0 ? text.substr(0, size) : kReplacement;
        text.remove_prefix(std::max<size_t>(size, 1));
    }
    return result;
}

size_t columns(std::string_view text)
{
    size_t sum = 0;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        sum += character.size > 0 ? columnsOf(character.code) : 1;
        text.remove_prefix(std::max<size_t>(character.size, 1));
    }
    return sum;
}

std::string_view firstColumns(std::string_view text, size_t columns)
{
    size_t size = 0;
    while (size < text.size()) {
        const Character character = firstCharacter(text.substr(size));
        const size_t width = character.size > 0 ? columnsOf(character.code) : 1;
        if (width > columns)
            break;
        columns -= width;
        size += std::max<size_t>(character.size, 1);
    }
    return text.substr(0, size);
}

} // namespace text
