#include "tools/text/printable.h"

#include "tools/text/utf8.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace text {
namespace {

// C0, DEL and C1 control characters, line and paragraph separators, those that change the direction
// of writing, and two that are no characters, which neither XML nor YAML may hold.
bool isControl(uint32_t code)
{
    return code < 0x20 || (code >= 0x7f && code <= 0x9f) || (code >= 0x202a && code <= 0x202e)
        || (code >= 0x2066 && code <= 0x2069) || code == 0x2028 || code == 0x2029 || code == 0xfffe
        || code == 0xffff;
}

} // namespace

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        const bool keeps = character.size > 0 && !isControl(character.code);
        const size_t size = keeps ? character.size : 1;
        if (keeps) {
            result += text.substr(0, size);
        } else {
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
