#include "sim/profile/utf16.h"

namespace sim {
namespace {

constexpr char32_t kFirstSurrogate = 0xd800;
constexpr char32_t kFirstLowSurrogate = 0xdc00;
constexpr char32_t kLastSurrogate = 0xdfff;
constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char32_t kLast = 0x10ffff;

bool isSurrogate(char32_t code)
{
    return code >= kFirstSurrogate && code <= kLastSurrogate;
}

// Takes the bytes of one character from the front of `text`. No value if they are not valid.
std::optional<char32_t> takeCharacter(std::string_view& text)
{
    const auto first = static_cast<unsigned char>(text.front());
    const size_t size = first < 0x80 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    constexpr char32_t kFirstOfSize[] = {0, 0, 0x80, 0x800, kFirstSupplementary};
    constexpr unsigned char kMask[] = {0, 0x7f, 0x1f, 0x0f, 0x07};
    const bool canBegin = first < 0x80 || (first >= 0xc0 && first < 0xf8);
    if (!canBegin || text.size() < size)
        return std::nullopt;
    char32_t code = first & kMask[size];
    for (const char c : text.substr(1, size - 1)) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xc0) != 0x80)
            return std::nullopt;
        code = code << 6 | (byte & 0x3f);
    }
    if (code < kFirstOfSize[size] || code > kLast || isSurrogate(code))
        return std::nullopt;
    text.remove_prefix(size);
    return code;
}

void append(std::string& text, char32_t code)
{
    const auto byte = [&text](char32_t value) { text += static_cast<char>(value); };
    if (code < 0x80)
        return byte(code);
    if (code < 0x800) {
        byte(0xc0 | code >> 6);
    } else if (code < kFirstSupplementary) {
        byte(0xe0 | code >> 12);
        byte(0x80 | (code >> 6 & 0x3f));
    } else {
        byte(0xf0 | code >> 18);
        byte(0x80 | (code >> 12 & 0x3f));
        byte(0x80 | (code >> 6 & 0x3f));
    }
    byte(0x80 | (code & 0x3f));
}

} // namespace

size_t validLength(std::string_view text)
{
    std::string_view rest = text;
    while (!rest.empty() && takeCharacter(rest)) { }
    return text.size() - rest.size();
}

std::optional<std::u16string> utf16(std::string_view utf8)
{
    std::u16string units;
    while (!utf8.empty()) {
        const auto code = takeCharacter(utf8);
        if (!code)
            return std::nullopt;
        if (*code < kFirstSupplementary) {
            units += static_cast<char16_t>(*code);
            continue;
        }
        const char32_t rest = *code - kFirstSupplementary;
        units += static_cast<char16_t>(kFirstSurrogate | rest >> 10);
        units += static_cast<char16_t>(kFirstLowSurrogate | (rest & 0x3ff));
    }
    return units;
}

std::optional<std::string> utf8(std::u16string_view utf16)
{
    std::string text;
    for (size_t i = 0; i < utf16.size(); ++i) {
        char32_t code = utf16[i];
        if (isSurrogate(code)) {
            const char32_t low = i + 1 < utf16.size() ? utf16[i + 1] : 0;
            if (code >= kFirstLowSurrogate || low < kFirstLowSurrogate || low > kLastSurrogate)
                return std::nullopt;
            code = kFirstSupplementary + ((code & 0x3ff) << 10 | (low & 0x3ff));
            ++i;
        }
        append(text, code);
    }
    return text;
}

} // namespace sim
