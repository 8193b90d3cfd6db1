#include "base/src/ini/ini.h"

#include "base/src/ini/ini_line.h"

#include <cassert>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <new>
#include <sstream>
#include <utility>

namespace rkb {

namespace {

void print_unprintable(char character)
{
    printf("Failing on int8_t %d\n", static_cast<signed char>(character));
}

// Qt programs run in the user's locale. Its decimal comma must not change how a file is read.
double to_double(const std::string& text)
{
    static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(text.c_str(), nullptr, c_locale);
}

} // namespace

ini_t::ini_t(std::string file_path)
    : m_file_path(std::move(file_path))
{
}

ini_t::~ini_t() = default;

bool ini_t::load()
try {
    std::ifstream file(m_file_path);
    return file && load_lines(file);
} catch (const std::bad_alloc&) {
    return false;
}

bool ini_t::load_text(std::string_view text)
{
    std::istringstream lines{std::string(text)};
    return load_lines(lines);
}

bool ini_t::load_lines(std::istream& lines)
{
    constexpr std::streamsize buffer_size = max_line_size + 1;
    const auto buffer = std::make_unique_for_overwrite<char[]>(buffer_size);
    size_t current = find_section({});
    while (lines.getline(buffer.get(), buffer_size)) {
        const size_t length = static_cast<size_t>(lines.gcount()) - (lines.eof() ? 0 : 1);
        const ini_line_t line = parse_ini_line({buffer.get(), length});
        if (line.kind == ini_line_t::unprintable) {
            print_unprintable(buffer[0]);
            return false;
        }
        take_line(line, current);
    }
    const bool is_too_long = !lines.eof() && !lines.bad();
    if (is_too_long && ini_line_is_unprintable(buffer[0]))
        print_unprintable(buffer[0]);
    return lines.eof() && !m_sections.empty();
}

// `current` is the first section that has the name of the last section line.
void ini_t::take_line(const ini_line_t& line, size_t& current)
{
    switch (line.kind) {
    case ini_line_t::key:
        if (current == none)
            current = add_section({});
        store(current, line.name, line.value);
        break;
    case ini_line_t::section:
        current = add_section(line.name);
        break;
    case ini_line_t::comment:
        (current == none ? m_header_comments : m_sections[current].comments)
            .push_back(keep(line.name));
        break;
    case ini_line_t::ignored:
    case ini_line_t::unprintable:
        break;
    }
}

// Adds a section even if there is one of that name. Returns the position of the first one.
size_t ini_t::add_section(std::string_view name)
{
    m_sections.push_back({keep(name), {}, {}});
    const name_t added(0, m_sections.back().name);
    return m_positions.try_emplace(added, m_sections.size() - 1).first->second;
}

bool ini_t::set(std::string_view section, std::string_view key, std::string_view value, bool create)
{
    if (!create && !find_key(section, key))
        return false;
    const size_t position = find_section(section);
    store(position == none ? add_section(section) : position, key, value);
    return true;
}

void ini_t::store(size_t section, std::string_view key, std::string_view value)
{
    assert(section < m_sections.size());
    std::vector<ini_key_t>& keys = m_sections[section].keys;
    const auto at = m_positions.lower_bound({section + 1, key});
    if (at != m_positions.end() && at->first == name_t(section + 1, key)) {
        keys[at->second].value = value;
        return;
    }
    keys.push_back({keep(key), std::string(value)});
    m_positions.try_emplace(at, name_t(section + 1, keys.back().name), keys.size() - 1);
}

std::string_view ini_t::keep(std::string_view text)
{
    if (text.empty())
        return {};
    auto* const copy = static_cast<char*>(m_texts.allocate(text.size(), 1));
    memcpy(copy, text.data(), text.size());
    return {copy, text.size()};
}

std::string ini_t::get_string(
    std::string_view section, std::string_view key, std::string_view missing) const
{
    const ini_key_t* found = find_key(section, key);
    return found ? found->value : std::string(missing);
}

int ini_t::get_int(std::string_view section, std::string_view key, int missing) const
{
    const ini_key_t* found = find_key(section, key);
    return found ? static_cast<int>(strtol(found->value.c_str(), nullptr, 10)) : missing;
}

double ini_t::get_double(std::string_view section, std::string_view key, double missing) const
{
    const ini_key_t* found = find_key(section, key);
    return found ? to_double(found->value) : missing;
}

size_t ini_t::key_count(std::string_view section) const
{
    const size_t position = find_section(section);
    return position == none ? 0 : m_sections[position].keys.size();
}

std::vector<std::string> ini_t::key_names(std::string_view section) const
{
    std::vector<std::string> names;
    const size_t position = find_section(section);
    if (position != none)
        for (const ini_key_t& key : m_sections[position].keys)
            names.emplace_back(key.name);
    return names;
}

void ini_t::release()
{
    m_positions.clear();
    m_sections = {};
    m_header_comments = {};
    m_texts.release();
}

size_t ini_t::find_section(std::string_view name) const
{
    const auto found = m_positions.find({0, name});
    return found == m_positions.end() ? none : found->second;
}

const ini_key_t* ini_t::find_key(std::string_view section, std::string_view key) const
{
    const size_t position = find_section(section);
    if (position == none)
        return nullptr;
    const auto found = m_positions.find({position + 1, key});
    return found == m_positions.end() ? nullptr : &m_sections[position].keys[found->second];
}

} // namespace rkb
