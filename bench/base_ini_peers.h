// Other ini parsers, in a file of their own: their headers and ours have the same names.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace peers {

// inih hands each key to a callback, which only counts it. Returns the count.
size_t parse_with_inih(const std::string& path);

struct name_t {
    std::string section;
    std::string key;
};

// Loads the file with SimpleIni and returns the lengths of the values found, summed up.
size_t look_up_with_simpleini(const std::string& path, const std::vector<name_t>& names);

} // namespace peers
