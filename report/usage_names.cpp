#include "report/usage_names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <system_error>

namespace report {
namespace {

constexpr size_t kMaxFileSize = size_t{16} * 1024 * 1024;
constexpr size_t kMaxNameSize = 255; // longer ones are ignored
constexpr uint16_t kButtonPage = 0x09;
constexpr std::string_view kPagePrefix = "HUT ";
constexpr std::string_view kLaterPage = "\nHUT ";

struct NumberAndName {
    uint16_t number = 0;
    std::string_view name;
};

// "0b  Telephony". No value for other text.
std::optional<NumberAndName> readEntry(std::string_view text)
{
    constexpr std::string_view separator = "  ";
    NumberAndName entry;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, entry.number, 16);
    if (result.ec != std::errc())
        return std::nullopt;
    text.remove_prefix(static_cast<size_t>(result.ptr - text.data()));
    if (!text.starts_with(separator))
        return std::nullopt;
    text.remove_prefix(separator.size());
    if (text.empty() || text.size() > kMaxNameSize)
        return std::nullopt;
    entry.name = text;
    return entry;
}

std::string_view takeLine(std::string_view& text)
{
    const size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    return line.substr(0, line.find_last_not_of(" \t\r") + 1); // npos + 1 is 0
}

uint32_t keyOf(Usage usage)
{
    return uint32_t{usage.page} << 16 | usage.id;
}

std::string hexadecimal(uint16_t number)
{
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "0x%04x", unsigned{number});
    return text.data();
}

} // namespace

UsageNames UsageNames::load()
{
    for (const char* const path : {"/usr/share/misc/usb.ids", "/var/lib/usbutils/usb.ids"}) {
        UsageNames names = load(path);
        if (!names.empty())
            return names;
    }
    return {};
}

UsageNames UsageNames::load(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::string text;
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    text.reserve(error ? 0 : std::min<size_t>(size, kMaxFileSize));
    std::array<char, 65'536> buffer;
    while (stream && text.size() < kMaxFileSize) {
        stream.read(buffer.data(), buffer.size());
        text.append(buffer.data(), static_cast<size_t>(stream.gcount()));
    }
    return parse(text);
}

UsageNames UsageNames::parse(std::string_view text)
{
    UsageNames names;
    // The vendors come first and are most of the file.
    const size_t before = text.find(kLaterPage);
    if (before != text.npos && !text.starts_with(kPagePrefix))
        text.remove_prefix(before + 1);
    bool inPage = false; // the lines that begin with a tab belong to `page`
    uint16_t page = 0;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        if (line.empty() || line.starts_with('#'))
            continue;
        if (line.starts_with('\t')) {
            const auto entry = readEntry(line.substr(1));
            if (inPage && entry)
                names.usages_.try_emplace(keyOf({page, entry->number}), entry->name);
            continue;
        }
        inPage = false;
        if (!line.starts_with(kPagePrefix))
            continue;
        if (const auto entry = readEntry(line.substr(kPagePrefix.size()))) {
            inPage = true;
            page = entry->number;
            names.pages_.try_emplace(page, entry->name);
        }
    }
    return names;
}

std::string UsageNames::page(uint16_t page) const
{
    const auto found = pages_.find(page);
    return found == pages_.end() ? "Page " + hexadecimal(page) : found->second;
}

std::string UsageNames::usage(Usage usage) const
{
    return name(usage).value_or(hexadecimal(usage.id));
}

std::string UsageNames::fullUsage(Usage usage) const
{
    return name(usage).value_or(page(usage.page) + ' ' + hexadecimal(usage.id));
}

std::optional<std::string> UsageNames::name(Usage usage) const
{
    if (const auto found = usages_.find(keyOf(usage)); found != usages_.end())
        return found->second;
    if (usage.page == kButtonPage && usage.id != 0)
        return "Button " + std::to_string(usage.id);
    return std::nullopt;
}

} // namespace report
