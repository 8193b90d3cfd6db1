#include "hid/model/DataField.h"

#include "hid/model/DumpText.h"

#include <algorithm>

namespace KX {

namespace {

const char* DataType(uint8_t tag)
{
    return tag == kTagInput ? "i" : tag == kTagOutput ? "o" : "f";
}

} // namespace

DataField::DataField(Item item, const FieldLayout& fieldLayout, std::vector<uint32_t> usages)
    : IData(item)
    , layout(fieldLayout)
    , usages_(std::move(usages))
{
}

void DataField::AddChild(std::unique_ptr<IData>) { }

std::string DataField::Dump(const std::string& indent) const
{
    const char* in = indent.c_str();
    std::string text = DumpText("%sreport    id:\t%u\n%sreport  size:\t%d\n%sreport count:\t%d\n"
                                "%sdata    type:\t%s\n%susage   page:\t%u\n",
        in, layout.reportId, in, layout.reportSize, in, layout.reportCount, in, DataType(tag), in,
        layout.usagePage);
    text += DumpText("%susage: ", in);
    for (const uint32_t usage : usages_)
        text += DumpText("0x%02x ", usage);
    return text + "\n";
}

uint32_t DataField::IndexOfUsage(uint32_t usage) const
{
    const auto found = std::find(usages_.begin(), usages_.end(), usage);
    return found == usages_.end() ? kNotFound : static_cast<uint32_t>(found - usages_.begin());
}

int64_t DataField::BitSize() const
{
    return int64_t{layout.reportSize} * layout.reportCount;
}

} // namespace KX
