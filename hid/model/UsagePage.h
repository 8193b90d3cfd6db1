// A top-level Usage Page item (its value is the page) with the usages and collections under it.
#pragma once

#include "hid/model/IData.h"

namespace KX {

class UsagePage final : public IData {
public:
    using IData::IData;

    [[nodiscard]] std::string_view GetClassName() const override { return "UsagePage"; }
    [[nodiscard]] std::string Dump(const std::string& indent) const override;

    // Only the first usage of that value counts, and only with a collection right behind it.
    [[nodiscard]] bool FindInput(
        uint32_t collectionUsage, uint32_t usage, Bytes& out) const override;
    [[nodiscard]] bool FindOutput(
        uint32_t collectionUsage, uint32_t usage, Bytes& out) const override;

private:
    [[nodiscard]] const IData* FindCollection(uint32_t collectionUsage) const;
};

} // namespace KX
