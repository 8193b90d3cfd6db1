// The usages that the Local items before a Main item give. Part of reading a layout. Pure.
#pragma once

#include "report/layout.h"

namespace report {

class LocalUsages {
public:
    // `problems` must outlive the object.
    explicit LocalUsages(std::vector<Problem>& problems);

    // Takes a Usage, Usage Minimum, Usage Maximum or Delimiter item. Ignores others.
    void add(const Item& item);

    // The usages since the last call, for a Main item. Those without a page of their own are on
    // `page`.
    [[nodiscard]] std::vector<UsageRange> take(uint16_t page);

private:
    struct End {
        Usage usage; // without its page unless extended
        bool extended = false;
        size_t offset = 0;
    };

    void addUsage(const Item& item);
    void addEnd(std::optional<End>& end, const Item& item);
    void dropEnd(std::optional<End>& end); // one without its other end
    void addRange(const End& minimum, const End& maximum);
    void add(const UsageRange& range);
    void addDelimiter(const Item& item);
    void openSet(size_t offset);
    void addProblem(size_t offset, std::string text);

    std::vector<Problem>& problems_;
    std::vector<UsageRange> usages_;
    std::optional<End> minimum_; // until its other end comes
    std::optional<End> maximum_;
    // Of a set of alternatives between two delimiters only the first one counts.
    std::optional<size_t> setOffset_; // of the delimiter that opened the set
    bool setHasUsage_ = false;
};

} // namespace report
