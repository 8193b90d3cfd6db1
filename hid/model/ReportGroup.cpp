#include "hid/model/ReportGroup.h"

#include "hid/model/DescriptorDump.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <optional>

namespace KX {

namespace {

const char* DataType(uint8_t tag)
{
    return tag == kTagInput ? "i" : tag == kTagOutput ? "o" : "f";
}

int64_t AddBits(int64_t sum, int64_t bits)
{
    int64_t result = 0;
    if (!__builtin_add_overflow(sum, bits, &result))
        return result;
    return bits < 0 ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
}

std::optional<int64_t> FindBit(const ReportGroup::Fields& list, uint32_t usage)
{
    int64_t offset = 0;
    for (const auto& field : list) {
        const uint32_t index = field->IndexOfUsage(usage);
        if (index != IData::kNotFound)
            return AddBits(offset, index);
        offset = AddBits(offset, field->BitSize());
    }
    return std::nullopt;
}

void Append(ReportGroup::Fields& list, std::unique_ptr<DataField> field)
{
    constexpr size_t usualFields = 8; // in one direction
    if (list.empty())
        list.reserve(usualFields);
    list.push_back(std::move(field));
}

std::string DumpFields(const ReportGroup::Fields& list, const std::string& indent)
{
    std::string text;
    for (const auto& field : list)
        text += field->Dump(indent) + "\n";
    return text;
}

} // namespace

DataField::DataField(Item item, const FieldLayout& fieldLayout, std::vector<uint32_t> usages)
    : IData(item)
    , layout(fieldLayout)
    , usages_(std::move(usages))
{
    assert(usages_.empty() || static_cast<int64_t>(usages_.size()) == layout.reportCount);
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

void ReportGroup::AddChild(std::unique_ptr<IData> child)
{
    assert(child);
    if (child->GetClassName() != "DataField")
        return;
    std::unique_ptr<DataField> field(static_cast<DataField*>(child.release()));
    if (field->layout.reportId != reportId)
        return;
    if (field->tag == kTagInput)
        Append(inputs_, std::move(field));
    else if (field->tag == kTagOutput)
        Append(outputs_, std::move(field));
}

std::string ReportGroup::Dump(const std::string& indent) const
{
    const char* in = indent.c_str();
    return DumpText("%sReportID:%u\n%sInputs:\n", in, reportId, in)
        + DumpFields(inputs_, indent + "\t") + DumpText("%sOutputs:\n", in)
        + DumpFields(outputs_, indent + "\t");
}

bool ReportGroup::FindInputUsage(uint32_t usage, Bytes& out) const
{
    return BuildTemplate(inputs_, usage, out);
}

bool ReportGroup::FindOutputUsage(uint32_t usage, Bytes& out) const
{
    return BuildTemplate(outputs_, usage, out);
}

bool ReportGroup::BuildTemplate(const Fields& list, uint32_t usage, Bytes& out) const
{
    const std::optional<int64_t> bit = FindBit(list, usage);
    const int64_t total = TotalBits(list);
    constexpr int64_t maxBits = (kMaxTemplateSize - 1) * 8;
    if (!bit || *bit < 0 || total < 0 || total > maxBits)
        return false;

    out.assign(static_cast<size_t>((total + 7) / 8 + 1), 0);
    out[0] = static_cast<uint8_t>(reportId);
    const auto byte = static_cast<size_t>(*bit / 8) + 1;
    if (byte < out.size()) // a field of 0 bits can lie after the report's end
        out[byte] = static_cast<uint8_t>(1u << (*bit % 8));
    return true;
}

int64_t ReportGroup::TotalBits(const Fields& list) const
{
    int64_t total = 0;
    for (const auto& field : list)
        total = AddBits(total, field->BitSize());
    return total;
}

} // namespace KX
