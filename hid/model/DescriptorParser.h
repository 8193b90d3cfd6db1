// Builds the nodes of a report descriptor level by level. Pure. Use Root::Parse().
#pragma once

#include "hid/model/Item.h"
#include "hid/model/ReportGroup.h"

namespace KX {

// The current report size (bits) and report count. They are global items: they keep their values
// until they are set again, also from one collection to the next, because descriptors leave out
// items that have not changed.
struct ReportShape {
    uint32_t size = 0;
    uint32_t count = 0;
};

// Turns the items inside one top-level collection into its report groups and their fields.
class CollectionContents {
public:
    // Adds the first report group, with id 0, to `collection`. `page` is the value of the UsagePage
    // node that the collection belongs to. It is the page of the fields until a Usage Page item
    // inside this collection sets another one. Usage Page items inside earlier collections have no
    // effect here, although in HID they are global items. Both references must outlive this object.
    CollectionContents(IData& collection, uint32_t page, ReportShape& shape);

    // Processes the next item. The caller counts nested collections: their fields belong to the
    // same groups.
    void Add(const Item& item);

private:
    void AddGroup(const Item& item);
    void SetReportId(const Item& item);
    void AddField(const Item& item);
    [[nodiscard]] std::vector<uint32_t> TakeUsages();

    IData& collection_;
    ReportGroup* group_ = nullptr; // the current one; owned by the collection
    uint32_t usagePage_;
    ReportShape& shape_;
    std::vector<uint32_t> pendingUsages_;
};

class DescriptorParser {
public:
    // `descriptor` must outlive the parser.
    explicit DescriptorParser(std::span<const uint8_t> descriptor)
        : reader_(descriptor)
    {
    }

    // Adds a UsagePage node to `root` for each top-level Usage Page item.
    void ParseRoot(IData& root);

private:
    void ParsePage(IData& page);
    void ParseCollection(IData& collection, uint32_t page);

    ItemReader reader_;
    ReportShape shape_;
    size_t depth_ = 0; // number of collections that are open
};

} // namespace KX
