#include "report/local_usages.h"

#include <algorithm>
#include <utility>

namespace report {
namespace {

constexpr size_t kExtendedSize = 4; // of the data of a usage that includes its page

bool isExtended(const Item& item)
{
    return item.data.size() == kExtendedSize;
}

Usage usageOf(const Item& item)
{
    return {static_cast<uint16_t>(item.value >> 16), static_cast<uint16_t>(item.value)};
}

} // namespace

LocalUsages::LocalUsages(std::vector<Problem>& problems)
    : problems_(problems)
{
}

void LocalUsages::add(const Item& item)
{
    if (item.tag == ItemTag::kDelimiter) {
        addDelimiter(item);
        return;
    }
    if (setOffset_ && setHasUsage_)
        return;
    if (item.tag == ItemTag::kUsage)
        addUsage(item);
    else if (item.tag == ItemTag::kUsageMinimum)
        addEnd(minimum_, item);
    else if (item.tag == ItemTag::kUsageMaximum)
        addEnd(maximum_, item);
}

std::vector<UsageRange> LocalUsages::take(uint16_t page)
{
    dropEnd(minimum_);
    dropEnd(maximum_);
    if (setOffset_)
        addProblem(*setOffset_, "Delimiter that is not closed before the Main item");
    setOffset_.reset();

    uint64_t index = 0;
    bool pageMissing = false;
    for (UsageRange& range : usages_) {
        if (!range.extended)
            range.minimum.page = page;
        if (range.minimum.page == 0 && !std::exchange(pageMissing, true))
            addProblem(range.offset, "Usage without a Usage Page");
        range.index = index;
        index += uint64_t{range.maximum} - range.minimum.id + 1;
    }
    // A copy has no more room than it needs, and the next usages use the same memory.
    std::vector<UsageRange> taken(usages_);
    usages_.clear();
    return taken;
}

void LocalUsages::addUsage(const Item& item)
{
    const Usage usage = usageOf(item);
    add({.minimum = usage,
        .maximum = usage.id,
        .extended = isExtended(item),
        .offset = item.offset});
}

// The two ends of a range can come in either order.
void LocalUsages::addEnd(std::optional<End>& end, const Item& item)
{
    dropEnd(end);
    end = End{usageOf(item), isExtended(item), item.offset};
    if (minimum_ && maximum_) {
        addRange(*minimum_, *maximum_);
        minimum_.reset();
        maximum_.reset();
    }
}

void LocalUsages::dropEnd(std::optional<End>& end)
{
    if (end)
        addProblem(end->offset,
            &end == &minimum_ ? "Usage Minimum without a Usage Maximum"
                              : "Usage Maximum without a Usage Minimum");
    end.reset();
}

void LocalUsages::addRange(const End& minimum, const End& maximum)
{
    const size_t offset = std::max(minimum.offset, maximum.offset);
    if (minimum.extended && maximum.extended && minimum.usage.page != maximum.usage.page) {
        addProblem(offset, "Usage Minimum and Usage Maximum on different pages");
        return;
    }
    if (minimum.usage.id > maximum.usage.id) {
        addProblem(offset, "Usage Minimum above Usage Maximum");
        return;
    }
    if (minimum.extended != maximum.extended)
        addProblem(offset, "Only one of Usage Minimum and Usage Maximum has a page");
    add({.minimum = {minimum.extended ? minimum.usage.page : maximum.usage.page, minimum.usage.id},
        .maximum = maximum.usage.id,
        .isRange = true,
        .extended = minimum.extended || maximum.extended,
        .offset = offset});
}

void LocalUsages::add(const UsageRange& range)
{
    usages_.push_back(range);
    setHasUsage_ = true;
}

void LocalUsages::addDelimiter(const Item& item)
{
    const bool opens = item.value == 1;
    if (item.value > 1)
        addProblem(item.offset, "Delimiter that neither opens nor closes a set");
    else if (opens && setOffset_)
        addProblem(item.offset, "Delimiter in a set of another Delimiter");
    else if (!opens && !setOffset_)
        addProblem(item.offset, "Delimiter that closes no set");
    else if (opens)
        openSet(item.offset);
    else
        setOffset_.reset();
}

void LocalUsages::openSet(size_t offset)
{
    setOffset_ = offset;
    setHasUsage_ = false;
}

void LocalUsages::addProblem(size_t offset, std::string text)
{
    problems_.push_back({offset, std::move(text)});
}

} // namespace report
