#include "hid/model/DescriptorDump.h"

#include "hid/model/Root.h"

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

std::string DescriptorText(const Root& root, std::span<const uint8_t> bytes)
{
    constexpr size_t perLine = 16;
    std::string text = "{\n";
    for (size_t i = 0; i < bytes.size(); ++i) {
        text += DumpText("0x%02x", bytes[i]);
        if (i + 1 < bytes.size())
            text += ", ";
        if (i % perLine == perLine - 1)
            text += "\n";
    }
    return text + "}\n" + root.Dump("") + "\n";
}

void DumpDescriptor(const Root& root, std::span<const uint8_t> bytes)
{
    const std::string text = DescriptorText(root, bytes);
    (void)std::fwrite(text.data(), 1, text.size(), stdout);
    (void)std::fflush(stdout);
}

} // namespace KX
