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

    // Look only in the first usage page of value `page`.
    [[nodiscard]] virtual bool FindInput(
        uint32_t page, uint32_t collectionUsage, uint32_t usage, Bytes& out) const;
    [[nodiscard]] virtual bool FindOutput(
        uint32_t page, uint32_t collectionUsage, uint32_t usage, Bytes& out) const;

    // Adds the usage pages of a descriptor. The root must be empty. Never fails: any bytes make
    // some tree, in time and space linear in their number. Throws std::bad_alloc, which leaves
    // part of the tree.
    void Parse(std::span<const uint8_t> descriptor);

private:
    [[nodiscard]] const IData* FindPage(uint32_t page) const;
};

} // namespace KX
