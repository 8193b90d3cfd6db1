#include "tools/ctl/usb/device_words.h"

#include "tools/text/printable.h"
#include "tools/text/utf8.h"

#include <json/json.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace ctl {
namespace {

constexpr size_t kColumns = 7;
constexpr size_t kMaxNameWidth = 40;
constexpr std::string_view kGap = "  ";

using Row = std::array<std::string, kColumns>;

// In at most kMaxNameWidth columns.
std::string shortened(const std::string& text)
{
    constexpr std::string_view mark = "...";
    if (text::columns(text) <= kMaxNameWidth)
        return text;
    return std::string(text::firstColumns(text, kMaxNameWidth - mark.size())).append(mark);
}

Row rowOf(const DeviceEntry& entry, const report::UsageNames& names)
{
    const char* const telephony = entry.descriptor.empty() ? "?" : entry.telephony ? "yes" : "no";
    return {std::to_string(entry.number), idsText(entry), text::printable(entry.path),
        shortNameText(entry), telephony, accessWord(entry.access), pagesText(entry, names)};
}

std::string lineOf(const Row& row, const std::array<size_t, kColumns>& widths)
{
    std::string line;
    for (size_t i = 0; i + 1 < row.size(); ++i) {
        line += row[i];
        line.append(widths[i] - text::columns(row[i]), ' ').append(kGap);
    }
    return line + row.back();
}

const char* accessKey(Access access)
{
    switch (access) {
    case Access::kOpen:
        return "open";
    case Access::kNoPermission:
        return "no-permission";
    case Access::kBusy:
        return "busy";
    case Access::kOtherError:
        return "error";
    case Access::kNotTried:
        return "not-tried";
    }
    return "";
}

Json::Value pagesJson(const DeviceEntry& entry, const report::UsageNames& names)
{
    Json::Value pages(Json::arrayValue);
    for (const uint16_t page : entry.pages) {
        Json::Value value;
        value["id"] = page;
        value["name"] = text::printable(names.page(page));
        pages.append(std::move(value));
    }
    return pages;
}

} // namespace

std::string idsText(const DeviceEntry& entry)
{
    std::array<char, 16> text{};
    std::snprintf(
        text.data(), text.size(), "%04x:%04x", unsigned{entry.vendorId}, unsigned{entry.productId});
    return text.data();
}

std::string nameText(const DeviceEntry& entry)
{
    const bool both = !entry.manufacturer.empty() && !entry.product.empty();
    const std::string name = entry.manufacturer + (both ? " " : "") + entry.product;
    return name.empty() ? "(no name)" : text::printable(name);
}

std::string shortNameText(const DeviceEntry& entry)
{
    return shortened(nameText(entry));
}

std::string pagesText(const DeviceEntry& entry, const report::UsageNames& names)
{
    if (entry.descriptor.empty())
        return "unknown";
    std::string text;
    for (const uint16_t page : entry.pages)
        text += (text.empty() ? "" : ", ") + text::printable(names.page(page));
    return text.empty() ? "none" : text;
}

std::string accessWord(Access access)
{
    switch (access) {
    case Access::kOpen:
        return "can be opened";
    case Access::kNoPermission:
        return "no permission";
    case Access::kBusy:
        return "in use";
    case Access::kOtherError:
        return "fails";
    case Access::kNotTried:
        return "not tried";
    }
    return "";
}

std::vector<std::string> deviceTable(
    std::span<const DeviceEntry> entries, const report::UsageNames& names)
{
    std::vector<Row> rows = {{"No", "Ids", "Path", "Name", "Telephony", "Access", "Usage pages"}};
    for (const DeviceEntry& entry : entries)
        rows.push_back(rowOf(entry, names));
    std::array<size_t, kColumns> widths{};
    for (const Row& row : rows) {
        for (size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], text::columns(row[i]));
    }
    std::vector<std::string> lines;
    lines.reserve(rows.size());
    for (const Row& row : rows)
        lines.push_back(lineOf(row, widths));
    return lines;
}

Json::Value deviceJson(const DeviceEntry& entry, const report::UsageNames& names)
{
    const bool known = !entry.descriptor.empty();
    Json::Value value;
    value["number"] = entry.number ? Json::Value(Json::UInt64{entry.number}) : Json::Value();
    value["ids"] = idsText(entry);
    value["path"] = text::printable(entry.path);
    value["interface"] = entry.interface;
    value["manufacturer"] = text::validUtf8(entry.manufacturer);
    value["product"] = text::validUtf8(entry.product);
    value["serialNumber"] = text::validUtf8(entry.serialNumber);
    value["descriptor"] = known ? Json::Value(report::toHex(entry.descriptor, "")) : Json::Value();
    value["usagePages"] = pagesJson(entry, names);
    value["telephony"] = known ? Json::Value(entry.telephony) : Json::Value();
    value["access"] = accessKey(entry.access);
    value["accessText"] = entry.accessText;
    value["firstOfItsIds"] = entry.firstOfItsIds;
    return value;
}

} // namespace ctl
