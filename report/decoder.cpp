#include "report/decoder.h"

#include <algorithm>
#include <cassert>

namespace report {
namespace {

constexpr uint32_t kValueBits = 64; // of Value::value

// The bits from `offset`, the first one lowest. Reads at most kValueBits.
uint64_t readBits(std::span<const uint8_t> bytes, size_t offset, uint32_t size)
{
    uint64_t value = 0;
    size = std::min(size, kValueBits);
    for (uint32_t done = 0; done < size;) {
        const size_t at = offset + done;
        const uint32_t shift = at % 8;
        value |= uint64_t{bytes[at / 8]} >> shift << done;
        done += 8 - shift;
    }
    return size < kValueBits ? value & ((uint64_t{1} << size) - 1) : value;
}

int64_t withSign(uint64_t value, uint32_t size)
{
    assert(size != 0);
    const uint32_t unusedBits = kValueBits - std::min(size, kValueBits);
    return static_cast<int64_t>(value << unusedBits) >> unusedBits;
}

bool isInRange(const Field& field, int64_t value)
{
    // An unsigned value above the largest int64_t is negative here and so out of range, too.
    return !field.hasLogicalRange()
        || (value >= field.logicalMinimum && value <= field.logicalMaximum);
}

Value readValue(const Field& field, uint32_t index, std::span<const uint8_t> payload)
{
    Value value;
    value.field = &field;
    value.index = index;
    const uint64_t bits
        = readBits(payload, field.bitOffset + size_t{index} * field.size, field.size);
    value.value = field.isSigned() ? withSign(bits, field.size) : static_cast<int64_t>(bits);
    value.inRange = isInRange(field, value.value);
    if (field.isVariable())
        value.usage = field.usageAt(index);
    else if (value.inRange)
        value.usage = field.usageAt(
            static_cast<uint64_t>(value.value) - static_cast<uint64_t>(field.logicalMinimum));
    return value;
}

} // namespace

ReportView wireReport(const Layout& layout, ReportKind kind, std::span<const uint8_t> bytes)
{
    return layout.usesReportIds ? sentReport(kind, bytes) : ReportView{{kind, 0}, bytes};
}

ReportView sentReport(ReportKind kind, std::span<const uint8_t> bytes)
{
    if (bytes.empty())
        return {{kind, 0}, {}};
    return {{kind, bytes.front()}, bytes.subspan(1)};
}

DecodedReport decode(const Layout& layout, const ReportView& report)
{
    DecodedReport decoded;
    decoded.key = report.key;
    decoded.size = report.payload.size();
    const auto bits = layout.reportBits.find(report.key);
    if (bits == layout.reportBits.end())
        return decoded;
    decoded.known = true;
    decoded.expectedSize = (bits->second + 7) / 8;
    const size_t payloadBits = report.payload.size() * 8;
    for (const size_t fieldIndex : layout.reportFields.at(report.key)) {
        const Field& field = layout.fields[fieldIndex];
        if (field.isPadding() || field.count == 0 || field.bitOffset > payloadBits)
            continue;
        const size_t whole
            = std::min<size_t>(field.count, (payloadBits - field.bitOffset) / field.size);
        for (size_t i = 0; i < whole; ++i)
            decoded.values.push_back(readValue(field, static_cast<uint32_t>(i), report.payload));
    }
    return decoded;
}

} // namespace report
