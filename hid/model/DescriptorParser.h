// Builds the nodes of a report descriptor, level by level. Pure; see Root::Parse().
#pragma once

#include "hid/model/CollectionContents.h"
#include "hid/model/ItemReader.h"

namespace KX {

class DescriptorParser {
public:
    explicit DescriptorParser(std::span<const uint8_t> descriptor)
        : reader_(descriptor)
    {
    }

    void ParseRoot(IData& root);

private:
    void ParsePage(IData& page);
    void ParseCollection(IData& collection, uint32_t page);

    ItemReader reader_;
    ReportShape shape_;
    size_t depth_ = 0; // of collections open now
};

} // namespace KX
