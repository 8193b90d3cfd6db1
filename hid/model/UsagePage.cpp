#include "hid/model/UsagePage.h"

#include "hid/model/DumpText.h"

#include <algorithm>

namespace KX {

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
