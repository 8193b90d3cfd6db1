// A configuration file of sections, keys, values and comments, held in memory.
#pragma once

#include "base/src/ini/ini_line.h"
#include "base/src/ini/ini_list.h"
#include "base/src/ini/ini_text.h"
#include "base/src/util/no_copy.h"

#include <string>
#include <string_view>
#include <vector>

namespace rkb {

struct ini_key_t {
    std::string_view name;
    std::string_view value;
};

struct ini_section_t {
    std::string_view name;
    ini_list_t<ini_key_t> keys;
    std::vector<std::string_view> comments; // without their comment character
};

// Reads a file of this form; names are case-sensitive, and there is no quoting:
//
//     ; a comment, as is a line with #
//     [section]
//     key = value   ; to the end of the line
//
// Sections and keys keep the order of first appearance. When two sections have the same name all
// look-ups, and everything that is added, use the first; the other stays empty.
//
// For one thread at a time; concurrent look-ups are safe as long as nobody changes the object.
// What is returned by reference or view holds until the next load, set or release. No operation
// throws but for want of memory, and load not even then.
class ini_t : no_copy {
public:
    // Nothing is read yet.
    explicit ini_t(std::string file_path);
    virtual ~ini_t();

    // Reads the file and adds what it says to what is there; release() first for a fresh start.
    // True if the file was read to its end and there is at least one section. A line that begins
    // with an unprintable character (ini_line.h) prints "Failing on int8_t %d\n" with it to
    // standard output and ends the parse with false; so does a read error, without the print.
    // What was read until then stays. Takes time in proportion to the file; of a pipe it waits for
    // the writer.
    [[nodiscard]] bool load();

    // load() of a file that holds `text`. Touches no file but standard output.
    [[nodiscard]] bool load_text(std::string_view text);

    // Stores a value. With `create` a missing section or key is added behind the others, without
    // it false is returned and nothing changes.
    bool set(std::string_view section, std::string_view key, std::string_view value, bool create);

    // The stored value, or `missing` when there is no such section or key in it.
    std::string get_string(
        std::string_view section, std::string_view key, std::string_view missing) const;

    // The leading decimal number of the stored value as strtol reads it, cut to its low 32 bits:
    // 0 for a value that is no number.
    int get_int(std::string_view section, std::string_view key, int missing) const;

    // The leading number of the stored value as strtod reads it, with a decimal point whatever
    // the locale: 0 for a value that is no number.
    double get_double(std::string_view section, std::string_view key, double missing) const;

    // The keys of the first section of that name in file order; a missing section has none.
    size_t key_count(std::string_view section) const;
    std::vector<std::string> key_names(std::string_view section) const;

    // Every section in file order, those included that no look-up reaches.
    const std::vector<ini_section_t>& sections() const { return m_sections.all(); }

    // The comments before the first section.
    const std::vector<std::string_view>& header_comments() const { return m_header_comments; }

    // Forgets everything that was read or set.
    void release();

private:
    static constexpr size_t min_garbage_limit = 65'536;

    template <typename source_t>
    bool load_lines(source_t&& source);
    void take_line(const ini_line_t& line, uint32_t& current);
    const ini_section_t* find_section(std::string_view name) const;
    const ini_key_t* find_key(std::string_view section, std::string_view key) const;
    void store(ini_section_t& section, std::string_view key, std::string_view value);
    void drop_garbage();

    [[maybe_unused]] bool m_flag = true; // a field of the object's layout that nothing reads
    std::string m_file_path;
    ini_text_t m_text;    // holds every name, value and comment below
    size_t m_garbage = 0; // the bytes in it of values that were replaced
    size_t m_garbage_limit = min_garbage_limit;
    ini_list_t<ini_section_t> m_sections;
    std::vector<std::string_view> m_header_comments;
};

} // namespace rkb
