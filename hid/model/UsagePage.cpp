#include "hid/model/UsagePage.h"

#include "hid/model/DescriptorDump.h"

#include <algorithm>

namespace KX {

void Usage::AddChild(std::unique_ptr<IData>) { }

std::string Usage::Dump(const std::string& indent) const
{
    return DumpText("%sUsage(%02x) %02x:\n", indent.c_str(), tag, value);
}

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

std::string UsagePage::Dump(const std::string& indent) const
{
    return DumpText("%sUsagePage(%02x)(%lu) %02x:\n", indent.c_str(), tag, children.size(), value)
        + DumpChildren(indent + "\t");
}

bool UsagePage::FindInput(uint32_t collectionUsage, uint32_t usage, Bytes& out) const
{
    const IData* collection = FindCollection(collectionUsage);
    return collection && collection->FindInputUsage(usage, out);
}

bool UsagePage::FindOutput(uint32_t collectionUsage, uint32_t usage, Bytes& out) const
{
    const IData* collection = FindCollection(collectionUsage);
    return collection && collection->FindOutputUsage(usage, out);
}

const IData* UsagePage::FindCollection(uint32_t collectionUsage) const
{
    const auto usage = std::find_if(children.begin(), children.end(), [&](const auto& child) {
        return child->tag == kTagUsage && child->value == collectionUsage;
    });
    if (usage == children.end() || usage + 1 == children.end())
        return nullptr;
    const IData* next = (usage + 1)->get();
    return next->tag == kTagCollection ? next : nullptr;
}

} // namespace KX
