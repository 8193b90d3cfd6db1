#include "mediaenv/media_text.h"

#include <cstdlib>

namespace rkb {

std::string with_home(std::string value)
{
    if (value.starts_with('~')) {
        const char* const home = getenv("HOME");
        value.replace(0, 1, home ? home : "");
    }
    return value;
}

std::string with_final_slash(std::string value)
{
    if (!value.empty() && !value.ends_with('/'))
        value += '/';
    return value;
}

} // namespace rkb
