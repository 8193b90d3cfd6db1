#include "hid/model/Usage.h"

#include "hid/model/DumpText.h"

namespace KX {

void Usage::AddChild(std::unique_ptr<IData>) { }

std::string Usage::Dump(const std::string& indent) const
{
    return DumpText("%sUsage(%02x) %02x:\n", indent.c_str(), tag, value);
}

} // namespace KX
