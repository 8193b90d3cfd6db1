#include "sim/profile/utf16.h"

#include "tools/text/utf8.h"

namespace sim {
namespace {

constexpr char32_t kFirstSurrogate = 0xd800;
constexpr char32_t kFirstLowSurrogate = 0xdc00;
constexpr char32_t kLastSurrogate = 0xdfff;
constexpr char32_t kFirstSupplementary = 0x10000;

bool isSurrogate(char32_t code)
{
    return code >= kFirstSurrogate && code <= kLastSurrogate;
}

// Takes one character from the front of `text`. No value if its bytes are not valid.
std::optional<char32_t> takeCharacter(std::string_view& text)
{
    const text::Character character = text::firstCharacter(text);
    if (character.size == 0)
        return std::nullopt;
    text.remove_prefix(character.size);
    return character.code;
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
