// A configuration file of sections, keys, values and comments, held in memory.
#pragma once

#include "base/src/util/no_copy.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <memory_resource>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace rkb {

struct ini_line_t;

struct ini_key_t {
    std::string_view name;
    std::string value;
};

struct ini_section_t {
    std::string_view name;
    std::vector<ini_key_t> keys;            // in order of first appearance, no name twice
    std::vector<std::string_view> comments; // without their comment character
};

// Reads a file of this form. Names are case-sensitive, and there is no quoting:
//
//     ; a comment; a line that begins with # is one too
//     [section]
//     key = value   ; a comment up to the end of the line
//
// Sections and keys keep the order of first appearance. When several sections have the same name,
// look-ups use the first one, and new keys and comments go there; the others stay empty.
//
// Not synchronised: const operations may run at the same time; any other operation must run alone.
// References and views that an operation returns are valid until the next load, set or release.
// Operations may throw std::bad_alloc, except load().
class ini_t : no_copy {
public:
    // The longest line that is read, without its "\n". It limits the memory that a line can take.
    static constexpr size_t max_line_size = 1'048'576;

    // Only stores the path.
    explicit ini_t(std::string file_path);
    virtual ~ini_t();

    // Reads the file and adds its contents to those of the object; call release() first to replace
    // them. Returns true if the file was read to its end and the object then has a section.
    //
    // Reading stops with false at
    // - a file that cannot be opened or read;
    // - a line whose first character is not printable ASCII, as in a binary file; this also prints
    //   "Failing on int8_t %d\n" with the character to standard output;
    // - a line longer than max_line_size;
    // - a lack of memory.
    // What was read before that stays.
    //
    // Takes time in proportion to the size of the file and to the logarithm of its number of names.
    // Blocks while reading the file blocks: a pipe waits for its writer.
    [[nodiscard]] bool load();

    // As load() of a file that holds `text`, but may throw std::bad_alloc.
    [[nodiscard]] bool load_text(std::string_view text);

    // Stores a value. If the section or the key is missing, it is added after the others when
    // `create` is true; otherwise nothing changes and the result is false.
    bool set(std::string_view section, std::string_view key, std::string_view value, bool create);

    // The stored value, or `missing` if there is no such section or no such key in it.
    std::string get_string(
        std::string_view section, std::string_view key, std::string_view missing) const;

    // As get_string, with the value converted by strtol: its leading decimal number, or 0 if it
    // does not begin with one. A number outside the range of long becomes the nearest limit. Only
    // the low 32 bits are returned.
    int get_int(std::string_view section, std::string_view key, int missing) const;

    // As get_string, with the value converted by strtod in the C locale: its leading number, or 0
    // if it does not begin with one.
    double get_double(std::string_view section, std::string_view key, double missing) const;

    // The number and the names of a section's keys, in order. A missing section has none.
    size_t key_count(std::string_view section) const;
    std::vector<std::string> key_names(std::string_view section) const;

    // Every section in order, including those that share their name with an earlier one.
    const std::vector<ini_section_t>& sections() const { return m_sections; }

    // The comments before the first section.
    const std::vector<std::string_view>& header_comments() const { return m_header_comments; }

    // Removes all contents.
    void release();

private:
    // Identifies a section: 0 and its name; or a key: 1 + its section's position, and its name.
    using name_t = std::pair<size_t, std::string_view>;

    static constexpr size_t none = SIZE_MAX; // the position of a missing section

    bool load_lines(std::istream& lines);
    void take_line(const ini_line_t& line, size_t& current);
    size_t add_section(std::string_view name);
    void store(size_t section, std::string_view key, std::string_view value);
    std::string_view keep(std::string_view text);
    size_t find_section(std::string_view name) const;
    const ini_key_t* find_key(std::string_view section, std::string_view key) const;

    [[maybe_unused]] bool m_flag = true; // a field of the object's layout that nothing reads
    std::string m_file_path;
    // Holds the names and comments. Unlike values, they are never replaced.
    std::pmr::monotonic_buffer_resource m_texts;
    std::vector<ini_section_t> m_sections;
    std::vector<std::string_view> m_header_comments;
    // The positions of the first section and key of each name. Not a hash table: names in a file
    // can be chosen to have the same hash, and a map takes logarithmic time with any names.
    std::pmr::map<name_t, size_t> m_positions{&m_texts};
};

} // namespace rkb
