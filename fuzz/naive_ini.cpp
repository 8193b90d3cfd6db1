#include "fuzz/naive_ini.h"

#include <algorithm>
#include <climits>
#include <cstdint>

namespace naive {

namespace {

std::string trim(std::string text)
{
    const std::string blanks = "\r\n \t";
    while (!text.empty() && blanks.find(text.back()) != std::string::npos)
        text.pop_back();
    while (!text.empty() && blanks.find(text.front()) != std::string::npos)
        text.erase(0, 1);
    return text;
}

void take_key(ini_file_t& file, const std::string& section, const std::string& line, size_t equals)
{
    std::string value = line.substr(equals + 1);
    value = value.substr(0, value.find(';'));
    value = value.substr(0, value.find('#'));
    file.set(section, trim(line.substr(0, equals)), trim(value), true);
}

// `section` is the name in the last section line.
void take_line(ini_file_t& file, std::string& section, const std::string& line)
{
    size_t at = 0;
    while (at < line.size() && line[at] != ';' && line[at] != '#' && line[at] != '['
        && line[at] != '=')
        ++at;
    if (at == line.size())
        return;
    const std::string rest = line.substr(at + 1);
    if (line[at] == '=') {
        take_key(file, section, line, at);
    } else if (line[at] == '[') {
        size_t end = rest.size();
        while (end > 0 && rest[end - 1] != ']')
            --end;
        if (end == 0)
            return;
        section = rest.substr(0, end - 1);
        file.sections.push_back({section, {}, {}});
    } else if (ini_section_t* current = file.find(section)) {
        current->comments.push_back(rest);
    } else {
        file.header_comments.push_back(rest);
    }
}

} // namespace

ini_section_t* ini_file_t::find(const std::string& name)
{
    for (ini_section_t& section : sections)
        if (section.name == name)
            return &section;
    return nullptr;
}

bool ini_file_t::set(
    const std::string& section, const std::string& key, const std::string& value, bool create)
{
    if (!find(section)) {
        if (!create)
            return false;
        sections.push_back({section, {}, {}});
    }
    for (auto& [name, stored] : find(section)->keys)
        if (name == key) {
            stored = value;
            return true;
        }
    if (create)
        find(section)->keys.emplace_back(key, value);
    return create;
}

ini_file_t read_ini(const std::string& text)
{
    ini_file_t file;
    std::string section;
    std::string line;
    for (size_t at = 0; at <= text.size(); ++at) {
        if (at < text.size() && text[at] != '\n') {
            line += text[at];
            continue;
        }
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty() && (line[0] < 32 || line[0] > 126)) {
            file.printed = "Failing on int8_t " + std::to_string(int{line[0]}) + "\n";
            return file;
        }
        take_line(file, section, line);
        line.clear();
    }
    file.is_loaded = !file.sections.empty();
    return file;
}

int read_int(const std::string& text)
{
    size_t at = 0;
    while (at < text.size() && (text[at] == ' ' || (text[at] >= '\t' && text[at] <= '\r')))
        ++at;
    const bool is_negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (text[at] == '-' || text[at] == '+'))
        ++at;
    __int128_t number = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        number = 10 * number + (is_negative ? '0' - text[at] : text[at] - '0');
        number = std::clamp<__int128_t>(number, LONG_MIN, LONG_MAX);
    }
    return static_cast<int>(static_cast<int64_t>(number));
}

} // namespace naive
