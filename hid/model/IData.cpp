#include "hid/model/IData.h"

#include <cassert>

namespace KX {

void IData::AddChild(std::unique_ptr<IData> child)
{
    assert(child);
    children.push_back(std::move(child));
}

bool IData::FindInput(uint32_t, uint32_t, Bytes&) const
{
    return false;
}

bool IData::FindOutput(uint32_t, uint32_t, Bytes&) const
{
    return false;
}

bool IData::FindInputUsage(uint32_t, Bytes&) const
{
    return false;
}

bool IData::FindOutputUsage(uint32_t, Bytes&) const
{
    return false;
}

uint32_t IData::IndexOfUsage(uint32_t) const
{
    return kNotFound;
}

std::string IData::DumpChildren(const std::string& indent) const
{
    std::string text;
    for (const auto& child : children)
        text += child->Dump(indent);
    return text;
}

} // namespace KX
