// Reads a layout from a descriptor's items. Pure.
#pragma once

#include "report/local_usages.h"

namespace report {

class LayoutReader {
public:
    LayoutReader();

    // Takes the items in their order.
    void handleItem(const Item& item);

    // The layout of the items so far. Call it once, and then no longer use the object.
    [[nodiscard]] Layout finish();

private:
    // The state that Global items set, and that Push and Pop save and restore.
    struct Globals {
        uint16_t usagePage = 0;
        int32_t logicalMinimum = 0;
        int32_t signedLogicalMaximum = 0;
        uint32_t unsignedLogicalMaximum = 0;
        bool hasLogicalMaximum = false;
        uint32_t reportSize = 0;
        uint32_t reportCount = 0;
        uint8_t reportId = 0;
    };

    struct Saved {
        Globals globals;
        size_t offset; // of the Push
    };

    // Entries of the layout, whose addresses do not change.
    struct Report {
        Layout::ReportKey key{};
        uint32_t* bits = nullptr;
        std::vector<size_t>* fields = nullptr;
    };

    void handleMain(const Item& item);
    void handleGlobal(const Item& item);
    void handleLocal(const Item& item);

    void setUsagePage(const Item& item);
    void setReportId(const Item& item);
    void pop(const Item& item);

    void beginCollection(const Item& item, const std::vector<UsageRange>& usages);
    void endCollection(const Item& item);

    void addField(const Item& item, ReportKind kind, std::vector<UsageRange> usages);
    void addToReport(Field& field); // gives it its place
    Report& reportOf(Layout::ReportKey key);
    void addFieldProblems(const Field& field);
    void addMissingReportIds();
    void addProblem(const Item& item, std::string text);
    void addProblem(size_t offset, std::string text);

    Layout layout_;
    LocalUsages usages_{layout_.problems};
    Globals globals_;
    Report report_; // of the last field
    std::vector<Saved> saved_;
    std::vector<size_t> open_; // collections, outermost first
};

} // namespace report
