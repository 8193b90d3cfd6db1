#include "base/src/ini/ini_line.h"

#include <algorithm>

namespace rkb {

namespace {

bool opens_comment(char c)
{
    return c == ';' || c == '#';
}

bool decides_line(char c)
{
    return opens_comment(c) || c == '[' || c == '=';
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = "\r\n \t";
    const size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

ini_line_t parse_key(std::string_view name, std::string_view rest)
{
    const auto end = std::find_if(rest.begin(), rest.end(), opens_comment);
    return {ini_line_t::key, trimmed(name), trimmed({rest.begin(), end})};
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

    const auto at = std::find_if(line.begin(), line.end(), decides_line);
    if (at == line.end())
        return {};
    const std::string_view rest(at + 1, line.end());
    switch (*at) {
    case '=':
        return parse_key({line.begin(), at}, rest);
    case '[':
        return parse_section(rest);
    default:
        return {ini_line_t::comment, rest, {}};
    }
}

} // namespace rkb
