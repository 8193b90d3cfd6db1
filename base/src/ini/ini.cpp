#include "base/src/ini/ini.h"

#include "base/src/ini/ini_reader.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

namespace rkb {

namespace {

// The lines of a text, as ini_reader_t gives those of a file.
class text_lines_t {
public:
    explicit text_lines_t(std::string_view text)
        : m_rest(text)
    {
    }

    bool is_at_end() const { return true; }

    bool next(std::string_view& line)
    {
        if (m_rest.empty())
            return false;
        line = m_rest.substr(0, m_rest.find('\n'));
        m_rest.remove_prefix(std::min(line.size() + 1, m_rest.size()));
        return true;
    }

private:
    std::string_view m_rest;
};

// Qt programs run in the user's locale, whose decimal comma must not change what a file means.
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
    ini_reader_t reader(m_file_path.c_str());
    return reader.is_open() && load_lines(reader);
} catch (const std::bad_alloc&) {
    return false;
}

bool ini_t::load_text(std::string_view text)
{
    return load_lines(text_lines_t(text));
}

template <typename source_t>
bool ini_t::load_lines(source_t&& source)
{
    uint32_t current = m_sections.find({});
    for (std::string_view text; source.next(text);) {
        const ini_line_t line = parse_ini_line(text);
        if (line.kind == ini_line_t::unprintable) {
            printf("Failing on int8_t %d\n", static_cast<signed char>(text.front()));
            return false;
        }
        take_line(line, current);
    }
    return source.is_at_end() && !sections().empty();
}

// `current` is the first section that has the name of the last section line.
void ini_t::take_line(const ini_line_t& line, uint32_t& current)
{
    switch (line.kind) {
    case ini_line_t::key:
        if (current == m_sections.none)
            current = m_sections.append({});
        store(m_sections[current], line.name, line.value);
        break;
    case ini_line_t::section:
        m_sections.append(m_text.keep(line.name));
        current = m_sections.find(line.name);
        break;
    case ini_line_t::comment:
        (current == m_sections.none ? m_header_comments : m_sections[current].comments)
            .push_back(m_text.keep(line.name));
        break;
    case ini_line_t::ignored:
    case ini_line_t::unprintable:
        break;
    }
}

bool ini_t::set(std::string_view section, std::string_view key, std::string_view value, bool create)
{
    if (!create && !find_key(section, key))
        return false;
    uint32_t position = m_sections.find(section);
    if (position == m_sections.none)
        position = m_sections.append(m_text.keep(section));
    store(m_sections[position], key, value);
    return true;
}

void ini_t::store(ini_section_t& section, std::string_view key, std::string_view value)
{
    uint32_t position = section.keys.find(key);
    if (position == section.keys.none)
        position = section.keys.append(m_text.keep(key));
    std::string_view& stored = section.keys[position].value;
    const size_t replaced = stored.size();
    stored = m_text.keep(value);
    m_garbage += replaced;
    if (m_garbage > m_text.size() / 2 && m_garbage > m_garbage_limit)
        drop_garbage();
}

// Copies what is in use to a new storage, so that values which keep being replaced take no more
// than about twice the memory of the last ones. Nothing can fail once the storage is there. The
// next time is as far off as there are records to visit: they may be many and all of them empty.
void ini_t::drop_garbage()
{
    ini_text_t text(m_text.size() - m_garbage);
    size_t records = m_header_comments.size();
    for (std::string_view& comment : m_header_comments)
        comment = text.keep(comment);
    for (ini_section_t& section : m_sections) {
        records += 1 + section.comments.size() + section.keys.all().size();
        section.name = text.keep(section.name);
        for (std::string_view& comment : section.comments)
            comment = text.keep(comment);
        for (ini_key_t& key : section.keys)
            key = {text.keep(key.name), text.keep(key.value)};
    }
    m_text = std::move(text);
    m_garbage = 0;
    m_garbage_limit = std::max(min_garbage_limit, records * sizeof(ini_key_t));
}

std::string ini_t::get_string(
    std::string_view section, std::string_view key, std::string_view missing) const
{
    const ini_key_t* found = find_key(section, key);
    return std::string(found ? found->value : missing);
}

int ini_t::get_int(std::string_view section, std::string_view key, int missing) const
{
    const ini_key_t* found = find_key(section, key);
    if (!found)
        return missing;
    return static_cast<int>(strtol(std::string(found->value).c_str(), nullptr, 10));
}

double ini_t::get_double(std::string_view section, std::string_view key, double missing) const
{
    const ini_key_t* found = find_key(section, key);
    return found ? to_double(std::string(found->value)) : missing;
}

size_t ini_t::key_count(std::string_view section) const
{
    const ini_section_t* found = find_section(section);
    return found ? found->keys.all().size() : 0;
}

std::vector<std::string> ini_t::key_names(std::string_view section) const
{
    std::vector<std::string> names;
    if (const ini_section_t* found = find_section(section)) {
        names.reserve(found->keys.all().size());
        for (const ini_key_t& key : found->keys.all())
            names.emplace_back(key.name);
    }
    return names;
}

void ini_t::release()
{
    m_sections = {};
    m_header_comments = {};
    m_text = {};
    m_garbage = 0;
    m_garbage_limit = min_garbage_limit;
}

const ini_section_t* ini_t::find_section(std::string_view name) const
{
    const uint32_t position = m_sections.find(name);
    return position == m_sections.none ? nullptr : &m_sections[position];
}

const ini_key_t* ini_t::find_key(std::string_view section, std::string_view key) const
{
    const ini_section_t* found = find_section(section);
    if (!found)
        return nullptr;
    const uint32_t position = found->keys.find(key);
    return position == found->keys.none ? nullptr : &found->keys[position];
}

} // namespace rkb
