// An ini file and its look-ups. Input: the file's bytes.
#include "base/src/ini/ini.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <unordered_set>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

// What stands first under a name is what a look-up finds; a later section of that name is empty.
void check(const rkb::ini_t& ini)
{
    std::unordered_set<std::string_view> names;
    for (const rkb::ini_section_t& section : ini.sections()) {
        if (!names.insert(section.name).second) {
            require(section.keys.empty() && section.comments.empty());
            continue;
        }
        require(ini.key_count(section.name) == section.keys.size());
        for (const rkb::ini_key_t& key : section.keys)
            require(ini.get_string(section.name, key.name, "missing") == key.value);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    rkb::ini_t ini("");
    const bool loaded = ini.load_text(text);
    require(!loaded || !ini.sections().empty());
    check(ini);
    ini.release();
    require(ini.sections().empty());
    return 0;
}
