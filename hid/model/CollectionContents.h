// Turns the items inside a top-level collection into its report groups and their fields. Pure.
#pragma once

#include "hid/model/ReportGroup.h"

namespace KX {

// Report size (bits) and count hold until they are set again, deliberately also from one collection
// into the next: they are global items, and devices leave out what has not changed.
struct ReportShape {
    uint32_t size = 0;
    uint32_t count = 0;
};

class CollectionContents {
public:
    // Gives `collection` its first report group, of id 0. `page` is the usage page that is in
    // force where the collection begins; `shape` outlives this object.
    CollectionContents(IData& collection, uint32_t page, ReportShape& shape);

    // Depths of nested collections are the caller's: their fields belong to the same groups.
    void Take(const Item& item);

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

} // namespace KX
