// Other ini parsers. Their source file is separate, because their headers have names like ours.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace peers {

// Parses the file with inih, which stores nothing. Returns the number of keys.
size_t parse_with_inih(const std::string& path);

struct name_t {
    std::string section;
    std::string key;
};

// Loads the file with SimpleIni, looks the names up and returns the sum of the values' lengths.
size_t look_up_with_simpleini(const std::string& path, const std::vector<name_t>& names);

} // namespace peers
