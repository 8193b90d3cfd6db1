// A Usage item beside the collections of its page; its value is the usage id. Takes no children.
#pragma once

#include "hid/model/IData.h"

namespace KX {

class Usage final : public IData {
public:
    using IData::IData;

    void AddChild(std::unique_ptr<IData> child) override;
    [[nodiscard]] std::string_view GetClassName() const override { return "Usage"; }
    [[nodiscard]] std::string Dump(const std::string& indent) const override;
};

} // namespace KX
