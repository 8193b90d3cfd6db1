// The tree of one report descriptor; its children are the usage pages in descriptor order.
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

    // The indent is not used: the tree begins at the margin.
    [[nodiscard]] std::string Dump(const std::string& indent) const override;

    // Looks in the first usage page of value `page`, only there.
    [[nodiscard]] virtual bool FindInput(
        uint32_t page, uint32_t collectionUsage, uint32_t usage, Bytes& out) const;
    [[nodiscard]] virtual bool FindOutput(
        uint32_t page, uint32_t collectionUsage, uint32_t usage, Bytes& out) const;

    // Adds the pages of a descriptor to an empty root. Total: any bytes make some tree, in time
    // and space linear in their number.
    void Parse(std::span<const uint8_t> descriptor);

private:
    [[nodiscard]] const IData* FindPage(uint32_t page) const;
};

} // namespace KX
