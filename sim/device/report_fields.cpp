#include "sim/device/report_fields.h"

#include <algorithm>

namespace sim {
namespace {

// Item prefixes without their size bits.
enum Item : uint8_t {
    kInput = 0x80,
    kOutput = 0x90,
    kFeature = 0xb0,
    kCollection = 0xa0,
    kEndCollection = 0xc0,
    kUsagePage = 0x04,
    kReportSize = 0x74,
    kReportId = 0x84,
    kReportCount = 0x94,
    kUsage = 0x08,
    kUsageMinimum = 0x18,
    kUsageMaximum = 0x28,
};

constexpr uint8_t kLongItem = 0xfe;
constexpr uint32_t kVariable = 0x02;  // main item flag: a field per usage, not an array
constexpr size_t kMaxUsages = 0x1000; // more than any real field has
constexpr size_t kMaxReportBits = 0xffff * size_t{8};

class FieldFinder {
public:
    explicit FieldFinder(ReportFields& found)
        : found_(found)
    {
    }

    void handleItem(uint8_t item, uint32_t value, size_t valueSize)
    {
        switch (item) {
        case kUsagePage:
            page_ = static_cast<uint16_t>(value);
            break;
        case kReportSize:
            size_ = value;
            break;
        case kReportCount:
            count_ = value;
            break;
        case kReportId:
            setReportId(value);
            break;
        case kUsage:
            usages_.push_back(full(value, valueSize));
            break;
        case kUsageMinimum:
            minimum_ = full(value, valueSize);
            break;
        case kUsageMaximum:
            addUsageRange(full(value, valueSize));
            break;
        case kInput:
            addFields(value, UsagePage::kTelephony, found_.buttons, found_.inputBits);
            break;
        case kOutput:
            addFields(value, UsagePage::kLed, found_.leds, found_.outputBits);
            break;
        default:
            break;
        }
        if (item == kInput || item == kOutput || item == kFeature || item == kCollection)
            usages_.clear();
    }

private:
    // A usage with its page in the upper half. Only values of four bytes contain a page. For the
    // others the page is 0, which means the usage page at the main item.
    static uint32_t full(uint32_t value, size_t valueSize)
    {
        return valueSize == 4 ? value : value & 0xffff;
    }

    void setReportId(uint32_t value)
    {
        id_ = static_cast<uint8_t>(value);
        found_.hasReportIds = true;
    }

    void addUsageRange(uint32_t maximum)
    {
        for (uint32_t usage = minimum_; usage <= maximum && usages_.size() < kMaxUsages; ++usage)
            usages_.push_back(usage);
    }

    void addFields(
        uint32_t flags, UsagePage wanted, std::vector<ReportField>& fields, ReportSizes& sizes)
    {
        size_t& bits = sizes[id_];
        for (size_t i = 0;
             size_ == 1 && (flags & kVariable) && i < std::min<size_t>(count_, usages_.size());
             ++i) {
            const uint32_t page = usages_[i] >> 16 ? usages_[i] >> 16 : page_;
            if (page == static_cast<uint32_t>(wanted))
                fields.push_back({wanted, static_cast<uint16_t>(usages_[i]), id_, bits + i});
        }
        bits = std::min(kMaxReportBits, bits + size_t{size_} * count_);
    }

    ReportFields& found_;
    uint16_t page_ = 0;
    uint32_t size_ = 0;
    uint32_t count_ = 0;
    uint8_t id_ = 0;
    uint32_t minimum_ = 0;
    std::vector<uint32_t> usages_;
};

size_t wirePosition(const ReportField& field, bool hasReportIds)
{
    return field.bit / 8 + (hasReportIds ? 1 : 0);
}

uint8_t mask(const ReportField& field)
{
    return static_cast<uint8_t>(1U << field.bit % 8);
}

} // namespace

ReportFields findReportFields(const Bytes& reportDescriptor)
{
    ReportFields found;
    FieldFinder finder(found);
    for (size_t at = 0; at < reportDescriptor.size();) {
        const uint8_t prefix = reportDescriptor[at++];
        const size_t size = (prefix & 3) == 3 ? 4 : prefix & 3;
        if (prefix == kLongItem || size > reportDescriptor.size() - at)
            break;
        uint32_t value = 0;
        for (size_t i = 0; i < size; ++i)
            value |= uint32_t{reportDescriptor[at + i]} << (8 * i);
        finder.handleItem(prefix & 0xfc, value, size);
        at += size;
    }
    return found;
}

Bytes emptyReport(uint8_t id, const ReportSizes& sizes, bool hasReportIds)
{
    const auto found = sizes.find(id);
    const size_t bits = found == sizes.end() ? 0 : found->second;
    Bytes report((hasReportIds ? 1 : 0) + (bits + 7) / 8);
    if (hasReportIds)
        report[0] = id;
    return report;
}

bool isSet(const ReportField& field, const Bytes& report, bool hasReportIds)
{
    const size_t at = wirePosition(field, hasReportIds);
    return at < report.size() && (report[at] & mask(field));
}

void set(const ReportField& field, Bytes& report, bool hasReportIds)
{
    const size_t at = wirePosition(field, hasReportIds);
    if (at < report.size())
        report[at] |= mask(field);
}

} // namespace sim
