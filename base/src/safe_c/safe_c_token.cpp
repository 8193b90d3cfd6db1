#include "base/src/safe_c/safe_c.h"

#include "base/src/safe_c/safe_c_report.h"

#include <cstring>
#include <string_view>

namespace rkb {

using namespace safe_c;

namespace {

// Looks at `size` bytes at most. Sets `rest` to where to go on, or to null when the bytes end
// before it is certain where that is.
char* cut_token(char* begin, size_t size, const char* delim, char*& rest)
{
    const std::string_view text(begin, strnlen(begin, size));
    char* const end = begin + text.size();
    const size_t first = text.find_first_not_of(delim);
    const size_t behind = text.find_first_of(delim, first);
    if (behind != text.npos && first != text.npos) {
        begin[behind] = '\0';
        rest = begin + behind + 1;
        return begin + first;
    }
    rest = text.size() < size ? end : nullptr;
    return first != text.npos && rest ? begin + first : nullptr;
}

} // namespace

char* strtok_s(char* str, size_t strmax, const char* delim, char** ptr)
{
    const auto rejected = [&](int code, const char* message) {
        reject(code, message,
            {{"(void *)str", str}, {"strmax", strmax}, {"(void *)delim", delim},
                {"(void *)ptr", ptr}});
        return nullptr;
    };
    if (strmax > max_string_size)
        return rejected(over_limit, "strtok_s invalid parameters");
    if (!delim || !ptr)
        return rejected(null_pointer, "strtok_s invalid parameters");
    char* const begin = str ? str : *ptr;
    if (!begin) {
        return rejected(
            null_pointer, "strtok_s invalid parameters *ptr should be not null if str is null");
    }

    char* const token = cut_token(begin, strmax, delim, *ptr);
    return *ptr ? token : rejected(no_space, "strtok_s invalid parameters");
}

} // namespace rkb
