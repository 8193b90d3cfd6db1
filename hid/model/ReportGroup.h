// The fields of one report id inside a collection, inputs and outputs apart.
#pragma once

#include "hid/model/DataField.h"

namespace KX {

class ReportGroup final : public IData {
public:
    using Fields = std::vector<std::unique_ptr<DataField>>;

    // The largest report that USB can describe: its length is a 16-bit number.
    static constexpr int64_t kMaxTemplateSize = 65535;

    // `item` is the Report ID item that opened the group; a collection's first group has none.
    explicit ReportGroup(Item item)
        : IData(item)
        , reportId(item.value)
    {
    }

    // Takes Input and Output fields of its own report id only.
    void AddChild(std::unique_ptr<IData> child) override;
    [[nodiscard]] std::string_view GetClassName() const override { return "ReportGroup"; }
    [[nodiscard]] std::string Dump(const std::string& indent) const override;
    [[nodiscard]] bool FindInputUsage(uint32_t usage, Bytes& out) const override;
    [[nodiscard]] bool FindOutputUsage(uint32_t usage, Bytes& out) const override;

    // A template over `list` with the bit of the first field that holds `usage`. Controls count as
    // single bits, whatever the field's report size. False when no field holds it or the report
    // would be larger than kMaxTemplateSize bytes with its id.
    [[nodiscard]] virtual bool BuildTemplate(const Fields& list, uint32_t usage, Bytes& out) const;

    // The sum of the fields' bits, held at the ends of its range.
    [[nodiscard]] virtual int64_t TotalBits(const Fields& list) const;

    uint32_t reportId;

private:
    Fields inputs_;
    Fields outputs_;
};

} // namespace KX
