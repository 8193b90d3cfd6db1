#include "hid/model/DumpText.h"

#include <cstdarg>
#include <cstdio>

namespace KX {

std::string DumpText(const char* format, ...)
{
    char buffer[1024] = {};
    va_list arguments;
    va_start(arguments, format);
    (void)vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    return buffer;
}

} // namespace KX
