#include "base/src/ini/ini_line.h"

#include <array>
#include <cstdint>

namespace rkb {

namespace {

enum character_t : uint8_t {
    opens_comment = 1,
    decides_line = 2,
    blank = 4,
};

constexpr std::array<uint8_t, 256> make_characters()
{
    std::array<uint8_t, 256> table{};
    table[';'] = table['#'] = opens_comment | decides_line;
    table['['] = table['='] = decides_line;
    table['\r'] = table['\n'] = table[' '] = table['\t'] = blank;
    return table;
}

constexpr std::array<uint8_t, 256> characters = make_characters();

bool is(char c, character_t what)
{
    return characters[static_cast<uint8_t>(c)] & what;
}

size_t find(std::string_view text, character_t what)
{
    size_t at = 0;
    while (at < text.size() && !is(text[at], what))
        ++at;
    return at;
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && is(text.front(), blank))
        text.remove_prefix(1);
    while (!text.empty() && is(text.back(), blank))
        text.remove_suffix(1);
    return text;
}

ini_line_t parse_key(std::string_view name, std::string_view rest)
{
    const std::string_view value = rest.substr(0, find(rest, opens_comment));
    return {ini_line_t::key, trimmed(name), trimmed(value)};
}

ini_line_t parse_section(std::string_view rest)
{
    const size_t end = rest.rfind(']');
    if (end == std::string_view::npos)
        return {};
    return {ini_line_t::section, rest.substr(0, end), {}};
}

} // namespace

ini_line_t parse_ini_line(std::string_view line)
{
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    if (line.empty())
        return {};
    if (ini_line_is_unprintable(line.front()))
        return {ini_line_t::unprintable, {}, {}};

    const size_t at = find(line, decides_line);
    if (at == line.size())
        return {};
    const std::string_view rest = line.substr(at + 1);
    switch (line[at]) {
    case '=':
        return parse_key(line.substr(0, at), rest);
    case '[':
        return parse_section(rest);
    default:
        return {ini_line_t::comment, rest, {}};
    }
}

} // namespace rkb
