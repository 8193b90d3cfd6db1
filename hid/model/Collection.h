// A top-level collection; its children are its report groups. Nested collections make no nodes.
#pragma once

#include "hid/model/IData.h"

namespace KX {

class Collection final : public IData {
public:
    using IData::IData;

    [[nodiscard]] std::string_view GetClassName() const override { return "Collection"; }
    [[nodiscard]] std::string Dump(const std::string& indent) const override;

    // The first group that holds the usage answers.
    [[nodiscard]] bool FindInputUsage(uint32_t usage, Bytes& out) const override;
    [[nodiscard]] bool FindOutputUsage(uint32_t usage, Bytes& out) const override;
};

} // namespace KX
