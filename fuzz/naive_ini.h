// A second, independent implementation of reading ini files, to compare base/src/ini with. Uses
// only lists, which are searched from their beginning.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace naive {

struct ini_section_t {
    std::string name;
    std::vector<std::pair<std::string, std::string>> keys; // with their values
    std::vector<std::string> comments;
};

struct ini_file_t {
    bool is_loaded = false;
    std::string printed; // to standard output
    std::vector<std::string> header_comments;
    std::vector<ini_section_t> sections;

    // The first section of that name, or null.
    ini_section_t* find(const std::string& name);

    bool set(
        const std::string& section, const std::string& key, const std::string& value, bool create);
};

// Has no limit for the length of lines.
[[nodiscard]] ini_file_t read_ini(const std::string& text);

// The number at the beginning of `text`, as strtol() reads it, and its low 32 bits.
[[nodiscard]] int read_int(const std::string& text);

} // namespace naive
