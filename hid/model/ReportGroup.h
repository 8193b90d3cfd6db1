// The fields of a report descriptor, grouped by report id.
#pragma once

#include "hid/model/IData.h"

namespace KX {

// The values of the global items before an Input or Output item.
struct FieldLayout {
    uint32_t reportId;
    int32_t reportSize; // bits
    int32_t reportCount;
    // Only the low byte of the page is kept: 0xFF30 becomes 0x30. Dumps depend on it.
    uint8_t usagePage;
};

// One Input or Output item: `reportCount` fields of `reportSize` bits. Takes no children.
class DataField final : public IData {
public:
    // `usages` has one usage per field, in item order. It is empty when the descriptor lists fewer
    // usages than fields: for padding, or when the usages are given as a range.
    DataField(Item item, const FieldLayout& fieldLayout, std::vector<uint32_t> usages);

    void AddChild(std::unique_ptr<IData> child) override;
    [[nodiscard]] std::string_view GetClassName() const override { return "DataField"; }
    [[nodiscard]] std::string Dump(const std::string& indent) const override;
    [[nodiscard]] uint32_t IndexOfUsage(uint32_t usage) const override;

    // The number of bits in the report. Negative when the descriptor's numbers are.
    [[nodiscard]] virtual int64_t BitSize() const;

    const FieldLayout layout;

private:
    const std::vector<uint32_t> usages_;
};

// The fields of one report id inside a collection. Input and output fields are kept apart.
class ReportGroup final : public IData {
public:
    using Fields = std::vector<std::unique_ptr<DataField>>;

    // In bytes with the report id. USB cannot describe a longer report: its length is 16 bits.
    static constexpr int64_t kMaxTemplateSize = 65535;

    // `item` is the Report ID item that opened the group. A collection's first group has no such
    // item and gets id 0.
    explicit ReportGroup(Item item)
        : IData(item)
        , reportId(item.value)
    {
    }

    // Keeps Input and Output fields of the group's own report id and deletes every other child.
    void AddChild(std::unique_ptr<IData> child) override;
    [[nodiscard]] std::string_view GetClassName() const override { return "ReportGroup"; }
    [[nodiscard]] std::string Dump(const std::string& indent) const override;
    [[nodiscard]] bool FindInputUsage(uint32_t usage, Bytes& out) const override;
    [[nodiscard]] bool FindOutputUsage(uint32_t usage, Bytes& out) const override;

    // Writes a report template for `list` with one bit set: that of the first field that holds
    // `usage`. A control counts as one bit, whatever the report size of its field. False, with
    // `out` unchanged, when no field holds the usage or the template would be longer than
    // kMaxTemplateSize.
    [[nodiscard]] virtual bool BuildTemplate(const Fields& list, uint32_t usage, Bytes& out) const;

    // The sum of the fields' bits. It saturates at the limits of int64_t.
    [[nodiscard]] virtual int64_t TotalBits(const Fields& list) const;

    uint32_t reportId;

private:
    Fields inputs_;
    Fields outputs_;
};

} // namespace KX
