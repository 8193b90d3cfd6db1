#include "tools/ctl/traffic/lamp_report.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace ctl {
namespace {

constexpr uint16_t kLastLed = 0xff; // the usage tables end well before
constexpr size_t kIdBits = 8;

constexpr std::array<std::pair<uint16_t, const char*>, 4> kCallLamps{
    {{0x17, "off-hook"}, {0x09, "mute"}, {0x18, "ring"}, {0x20, "hold"}}};

void setBits(report::Bytes& report, size_t offset, uint32_t size, uint64_t value)
{
    for (uint32_t bit = 0; bit < std::min<uint32_t>(size, 64); ++bit, ++offset) {
        const auto mask = static_cast<uint8_t>(1u << offset % 8);
        uint8_t& byte = report[offset / 8];
        byte = static_cast<uint8_t>(value >> bit & 1 ? byte | mask : byte & ~mask);
    }
}

// An array element that stands for no lamp has a value outside of the logical range.
std::optional<int64_t> nullValue(const report::Field& array)
{
    const int64_t minimum = array.logicalMinimum;
    const int64_t maximum = array.logicalMaximum;
    const uint32_t bits = std::min<uint32_t>(array.size, 32);
    if (minimum > 0 || maximum < 0)
        return 0;
    const int64_t largest = (int64_t{1} << (minimum < 0 ? bits - 1 : bits)) - 1;
    if (maximum < largest)
        return maximum + 1;
    if (minimum < 0 && minimum > -largest - 1)
        return minimum - 1;
    return std::nullopt;
}

bool isArray(const report::Field& field)
{
    return !field.isVariable() && !field.isConstant() && field.size > 0;
}

// Nothing on, with the id first.
report::Bytes emptyReport(const report::Layout& layout, const report::Field& lamp)
{
    const uint32_t bits = layout.reportBits.at({lamp.kind, lamp.reportId});
    report::Bytes report(1 + (bits + 7) / 8);
    report[0] = lamp.reportId;
    for (const report::Field& field : layout.fields) {
        if (field.kind != lamp.kind || field.reportId != lamp.reportId || !isArray(field))
            continue;
        for (uint64_t i = 0; i < field.count; ++i)
            setBits(report, kIdBits + field.bitOffset + i * field.size, field.size,
                static_cast<uint64_t>(nullValue(field).value_or(0)));
    }
    return report;
}

// Fully on: a lamp can have more than two values.
uint64_t brightest(const report::Field& field)
{
    return field.hasLogicalRange() && field.logicalMaximum > 0
        ? static_cast<uint64_t>(field.logicalMaximum)
        : 1;
}

report::Bytes litReport(const report::Layout& layout, const report::Field& field, uint64_t index)
{
    report::Bytes report = emptyReport(layout, field);
    if (field.isVariable())
        setBits(
            report, kIdBits + field.bitOffset + index * field.size, field.size, brightest(field));
    else // the first element of the array stands for the lamp
        setBits(report, kIdBits + field.bitOffset, field.size,
            static_cast<uint64_t>(field.logicalMinimum) + index);
    return report;
}

// How many of the field's usages its values can have. An array without a null value is left out: a
// lamp in it could not be switched off.
uint64_t usableUsages(const report::Field& field)
{
    if (field.isVariable())
        return std::min<uint64_t>(field.count, field.usageCount());
    if (!isArray(field) || !nullValue(field))
        return 0;
    const int64_t values = field.logicalMaximum - field.logicalMinimum + 1;
    return std::min(static_cast<uint64_t>(std::max<int64_t>(values, 0)), field.usageCount());
}

bool holdsLamps(const report::Field& field)
{
    return field.kind == report::ReportKind::kOutput && !field.isConstant() && field.count > 0
        && !field.usages.empty();
}

void addLamps(std::vector<Lamp>& lamps, const report::Layout& layout, const report::Field& field,
    const report::UsageNames& names)
{
    for (uint64_t i = 0; i < usableUsages(field) && lamps.size() < kLastLed; ++i) {
        const report::Usage usage = field.usageAt(i);
        const bool known = std::any_of(
            lamps.begin(), lamps.end(), [&](const Lamp& lamp) { return lamp.usage == usage; });
        if (usage.page == report::kLedPage && !known)
            lamps.push_back({lampName(usage, names), usage, litReport(layout, field, i),
                emptyReport(layout, field)});
    }
}

} // namespace

std::string lampName(report::Usage usage, const report::UsageNames& names)
{
    for (const auto& [id, name] : kCallLamps)
        if (usage.page == report::kLedPage && usage.id == id)
            return name;
    std::string name;
    for (const char c : names.usage(usage)) {
        if (c >= 'A' && c <= 'Z')
            name += static_cast<char>(c - 'A' + 'a');
        else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            name += c;
        else if (!name.empty() && name.back() != '-')
            name += '-';
    }
    if (name.ends_with('-'))
        name.pop_back();
    return name;
}

std::vector<Lamp> lampsOf(const report::Layout& layout, const report::UsageNames& names)
{
    std::vector<Lamp> lamps;
    for (const report::Field& field : layout.fields)
        if (holdsLamps(field))
            addLamps(lamps, layout, field, names);
    return lamps;
}

bool isLampName(std::string_view name, const report::UsageNames& names)
{
    for (uint16_t id = 1; id <= kLastLed; ++id)
        if (lampName({report::kLedPage, id}, names) == name)
            return true;
    return false;
}

} // namespace ctl
