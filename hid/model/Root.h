// The tree of one report descriptor. Its children are the usage pages in the descriptor's order.
#pragma once

#include "hid/model/IData.h"

#include <span>

namespace KX {

class Root final : public IData {
public:
    Root();

    using IData::FindInput;
    using IData::FindOutput;

    [[nodiscard]] std::string_view GetClassName() const override { return "Root"; }

    // `indent` is not used: the tree starts at the margin.
    [[nodiscard]] std::string Dump(const std::string& indent) const override;

    // Both look only at the first usage page of value `page`.
    [[nodiscard]] virtual bool FindInput(
        uint32_t page, uint32_t collectionUsage, uint32_t usage, Bytes& out) const;
    [[nodiscard]] virtual bool FindOutput(
        uint32_t page, uint32_t collectionUsage, uint32_t usage, Bytes& out) const;

    // Adds the usage pages of a descriptor. The root must be empty. Accepts any bytes and builds a
    // tree from them, in time and space linear in their number. Throws std::bad_alloc; a part of
    // the tree remains then.
    void Parse(std::span<const uint8_t> descriptor);

private:
    [[nodiscard]] const IData* FindPage(uint32_t page) const;
};

} // namespace KX
