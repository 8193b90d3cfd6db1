// The base of every node in a parsed report descriptor.
//
// A tree answers one question: in the application collection of a given usage page and usage, which
// bit of which report is a given control? Root::Parse() builds a tree once. After that it is only
// read, from any thread.
#pragma once

#include "hid/model/Bytes.h"
#include "hid/model/Item.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace KX {

class IData {
public:
    static constexpr uint32_t kNotFound = 0xFFFFFFFF;

    explicit IData(Item item)
        : tag(item.tag)
        , value(item.value)
    {
    }
    virtual ~IData() = default;
    IData(const IData&) = delete;
    IData& operator=(const IData&) = delete;

    // Appends `child`, which must not be null, and owns it. A node that does not take children of
    // that class deletes it.
    virtual void AddChild(std::unique_ptr<IData> child);

    [[nodiscard]] virtual std::string_view GetClassName() const = 0;

    // The text of the node and its children, for diagnosis. Each line begins with `indent`.
    [[nodiscard]] virtual std::string Dump(const std::string& indent) const = 0;

    // Writes the report template of the control `usage` in the collection `collectionUsage`: the
    // report id first (0 when the device uses none), then the report with only the control's bit
    // set. False, with `out` unchanged, when there is no such control.
    [[nodiscard]] virtual bool FindInput(
        uint32_t collectionUsage, uint32_t usage, Bytes& out) const;
    [[nodiscard]] virtual bool FindOutput(
        uint32_t collectionUsage, uint32_t usage, Bytes& out) const;

    // The same within one collection or report group.
    [[nodiscard]] virtual bool FindInputUsage(uint32_t usage, Bytes& out) const;
    [[nodiscard]] virtual bool FindOutputUsage(uint32_t usage, Bytes& out) const;

    // The position of the first such usage in a field, or kNotFound.
    [[nodiscard]] virtual uint32_t IndexOfUsage(uint32_t usage) const;

    const uint8_t tag;
    const uint32_t value;

protected:
    using Children = std::vector<std::unique_ptr<IData>>;

    [[nodiscard]] std::string DumpChildren(const std::string& indent) const;

    Children children;
};

} // namespace KX
