// The base of every node in a parsed report descriptor.
//
// A tree answers one question: in the application collection of a usage page and a usage, which
// bit of which report carries a control? It is built once by Root::Parse() and read only after
// that, then from any thread.
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

    // Appends a child, never null, and owns it. A node that takes no such child deletes it.
    virtual void AddChild(std::unique_ptr<IData> child);

    [[nodiscard]] virtual std::string_view GetClassName() const = 0;

    // The node's text with its children's, for diagnosis; `indent` begins each line.
    [[nodiscard]] virtual std::string Dump(const std::string& indent) const = 0;

    // The report template of the control `usage` in the collection of `collectionUsage`: report id
    // first (0 when the device uses none), then the report with only the control's bit set. False
    // when there is none; `out` is then as before.
    [[nodiscard]] virtual bool FindInput(
        uint32_t collectionUsage, uint32_t usage, Bytes& out) const;
    [[nodiscard]] virtual bool FindOutput(
        uint32_t collectionUsage, uint32_t usage, Bytes& out) const;

    // The same below one collection.
    [[nodiscard]] virtual bool FindInputUsage(uint32_t usage, Bytes& out) const;
    [[nodiscard]] virtual bool FindOutputUsage(uint32_t usage, Bytes& out) const;

    // The position of a usage in a field, kNotFound when it has none such.
    [[nodiscard]] virtual uint32_t IndexOfUsage(uint32_t usage) const;

    const uint8_t tag;
    const uint32_t value;

protected:
    using Children = std::vector<std::unique_ptr<IData>>;

    [[nodiscard]] std::string DumpChildren(const std::string& indent) const;

    Children children;
};

} // namespace KX
