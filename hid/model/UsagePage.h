// The nodes of a descriptor tree above the reports: a usage page, its usages and its collections.
#pragma once

#include "hid/model/IData.h"

namespace KX {

// A Usage item among the children of its page. Its value is the usage id. Takes no children.
class Usage final : public IData {
public:
    using IData::IData;

    void AddChild(std::unique_ptr<IData> child) override;
    [[nodiscard]] std::string_view GetClassName() const override { return "Usage"; }
    [[nodiscard]] std::string Dump(const std::string& indent) const override;
};

// A top-level collection. Its children are its report groups. Nested collections have no nodes.
class Collection final : public IData {
public:
    using IData::IData;

    [[nodiscard]] std::string_view GetClassName() const override { return "Collection"; }
    [[nodiscard]] std::string Dump(const std::string& indent) const override;

    // Both return the result of the first group that holds the usage.
    [[nodiscard]] bool FindInputUsage(uint32_t usage, Bytes& out) const override;
    [[nodiscard]] bool FindOutputUsage(uint32_t usage, Bytes& out) const override;
};

// A top-level Usage Page item. Its value is the page, its children are the Usage and Collection
// nodes after it, in the descriptor's order.
class UsagePage final : public IData {
public:
    using IData::IData;

    [[nodiscard]] std::string_view GetClassName() const override { return "UsagePage"; }
    [[nodiscard]] std::string Dump(const std::string& indent) const override;

    // Both look only at the first Usage of value `collectionUsage`. Its collection must be the
    // child that follows directly.
    [[nodiscard]] bool FindInput(
        uint32_t collectionUsage, uint32_t usage, Bytes& out) const override;
    [[nodiscard]] bool FindOutput(
        uint32_t collectionUsage, uint32_t usage, Bytes& out) const override;

private:
    [[nodiscard]] const IData* FindCollection(uint32_t collectionUsage) const;
};

} // namespace KX
