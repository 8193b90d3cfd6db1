#include "bench/base_ini_peers.h"

#define SI_NO_CONVERSION
#include <SimpleIni.h>
#include <cstring>
#include <ini.h>

namespace peers {

size_t parse_with_inih(const std::string& path)
{
    size_t count = 0;
    const auto handler = [](void* user, const char*, const char*, const char*) {
        ++*static_cast<size_t*>(user);
        return 1;
    };
    ini_parse(path.c_str(), handler, &count);
    return count;
}

size_t look_up_with_simpleini(const std::string& path, const std::vector<name_t>& names)
{
    CSimpleIniA ini;
    if (ini.LoadFile(path.c_str()) != SI_OK)
        return 0;
    size_t sum = 0;
    for (const name_t& name : names)
        sum += strlen(ini.GetValue(name.section.c_str(), name.key.c_str(), ""));
    return sum;
}

} // namespace peers
