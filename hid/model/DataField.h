// One Input or Output item: report-count fields of report-size bits. Takes no children.
#pragma once

#include "hid/model/IData.h"

namespace KX {

// What the global items before an Input or Output item say of it.
struct FieldLayout {
    uint32_t reportId;
    int32_t reportSize; // bits
    int32_t reportCount;
    // Only the low byte of the page: page 0xFF30 is kept as 0x30. Dumps show it so.
    uint8_t usagePage;
};

class DataField final : public IData {
public:
    // `usages`: one a field, in item order; or none when the descriptor names fewer than there are
    // fields (padding, or usages given as a range).
    DataField(Item item, const FieldLayout& layout, std::vector<uint32_t> usages);

    void AddChild(std::unique_ptr<IData> child) override;
    [[nodiscard]] std::string_view GetClassName() const override { return "DataField"; }
    [[nodiscard]] std::string Dump(const std::string& indent) const override;
    [[nodiscard]] uint32_t IndexOfUsage(uint32_t usage) const override;

    // Bits in the report; negative where the descriptor's numbers are.
    [[nodiscard]] virtual int64_t BitSize() const;

    const FieldLayout layout;

private:
    const std::vector<uint32_t> usages_;
};

} // namespace KX
