#include "base/src/safe_c/safe_c.h"

#include "base/src/safe_c/safe_c_report.h"

#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace rkb {

using namespace safe_c;

int getenv_s(size_t* len, char* value, size_t valuesz, const char* name)
{
    const auto rejected = [&](int code) {
        return reject(code, "getenv_s invalid parameters",
            {{"(void *)len", len}, {"(void *)value", value}, {"valuesz", valuesz},
                {"(void *)name", name}});
    };
    if (!len || !value || !name || valuesz < 2)
        return rejected(bad_size);
    if (!environ)
        return rejected(null_pointer);
    const char* const found = getenv(name);
    if (!found)
        return rejected(not_found);
    const size_t length = strnlen(found, valuesz);
    if (length == valuesz)
        return rejected(no_space);
    memcpy(value, found, length + 1);
    *len = length;
    return success;
}

} // namespace rkb
