#include "tools/ctl/usb/wide_text.h"

#include <cstdint>

namespace ctl {
namespace {

constexpr uint32_t kReplacement = 0xfffd;

bool isCharacter(uint32_t code)
{
    return code <= 0x10ffff && (code < 0xd800 || code > 0xdfff);
}

// The bytes of a character after its first.
void appendTail(std::string& text, uint32_t code, int bytes)
{
    for (int i = bytes - 1; i >= 0; --i)
        text += static_cast<char>(0x80 | (code >> (6 * i) & 0x3f));
}

void append(std::string& text, uint32_t code)
{
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xc0 | code >> 6);
        appendTail(text, code, 1);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xe0 | code >> 12);
        appendTail(text, code, 2);
    } else {
        text += static_cast<char>(0xf0 | code >> 18);
        appendTail(text, code, 3);
    }
}

} // namespace

std::string utf8(const wchar_t* text)
{
    std::string result;
    for (; text && *text; ++text) {
        const uint32_t code = std::char_traits<wchar_t>::to_int_type(*text);
        append(result, isCharacter(code) ? code : kReplacement);
    }
    return result;
}

} // namespace ctl
