#include "hid/model/Root.h"

#include "hid/model/DescriptorDump.h"
#include "hid/model/DescriptorParser.h"

#include <algorithm>
#include <cassert>

namespace KX {

Root::Root()
    : IData(Item{0, 0})
{
}

std::string Root::Dump(const std::string&) const
{
    return DumpText("----------------Root(%lu)--------------:\n", children.size())
        + DumpChildren("");
}

bool Root::FindInput(uint32_t page, uint32_t collectionUsage, uint32_t usage, Bytes& out) const
{
    const IData* found = FindPage(page);
    return found && found->FindInput(collectionUsage, usage, out);
}

bool Root::FindOutput(uint32_t page, uint32_t collectionUsage, uint32_t usage, Bytes& out) const
{
    const IData* found = FindPage(page);
    return found && found->FindOutput(collectionUsage, usage, out);
}

void Root::Parse(std::span<const uint8_t> descriptor)
{
    assert(children.empty());
    DescriptorParser(descriptor).ParseRoot(*this);
}

const IData* Root::FindPage(uint32_t page) const
{
    const auto found = std::find_if(
        children.begin(), children.end(), [&](const auto& child) { return child->value == page; });
    return found == children.end() ? nullptr : found->get();
}

} // namespace KX
