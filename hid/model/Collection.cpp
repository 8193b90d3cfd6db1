#include "hid/model/Collection.h"

#include "hid/model/DumpText.h"

#include <algorithm>

namespace KX {

std::string Collection::Dump(const std::string& indent) const
{
    return DumpText("%sCollection(%lu):\n", indent.c_str(), children.size())
        + DumpChildren(indent + "\t");
}

bool Collection::FindInputUsage(uint32_t usage, Bytes& out) const
{
    return std::any_of(children.begin(), children.end(),
        [&](const auto& group) { return group->FindInputUsage(usage, out); });
}

bool Collection::FindOutputUsage(uint32_t usage, Bytes& out) const
{
    return std::any_of(children.begin(), children.end(),
        [&](const auto& group) { return group->FindOutputUsage(usage, out); });
}

} // namespace KX
