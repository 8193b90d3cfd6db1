#include "report/usage_names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <system_error>

namespace report {
namespace {

constexpr std::streamoff kMaxFileSize = std::streamoff{16} * 1024 * 1024;
constexpr size_t kFirstRead = size_t{32} * 1024; // the pages and what is after them
constexpr size_t kMaxNameSize = 255;             // longer ones are ignored
constexpr uint16_t kPhoneKey0 = 0xb0; // to 9, see HID Usage Tables, Telephony Device page
constexpr uint16_t kPhoneKey9 = 0xb9;
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

// Sorts by key and keeps the first entry of each.
template <typename Entry>
void order(std::vector<Entry>& entries)
{
    const auto less = [](const Entry& a, const Entry& b) { return a.key < b.key; };
    const auto equal = [](const Entry& a, const Entry& b) { return a.key == b.key; };
    if (!std::is_sorted(entries.begin(), entries.end(), less))
        std::stable_sort(entries.begin(), entries.end(), less);
    entries.erase(std::unique(entries.begin(), entries.end(), equal), entries.end());
}

// The pages follow each other, so those of a file are complete if a line of another section comes
// before them.
bool hasAllPages(std::string_view endOfFile)
{
    constexpr std::string_view otherLines = "\t#\r\n"; // begin like this
    const size_t first = endOfFile.find(kLaterPage);
    if (first == endOfFile.npos)
        return false;
    for (size_t at = endOfFile.find('\n'); at < first; at = endOfFile.find('\n', at + 1)) {
        if (otherLines.find(endOfFile[at + 1]) == otherLines.npos)
            return true;
    }
    return false;
}

// As much of the end of the file as has all pages.
std::string readPages(std::istream& file)
{
    const std::streamoff end = file.seekg(0, std::ios::end).tellg();
    const auto limit = static_cast<size_t>(std::clamp<std::streamoff>(end, 0, kMaxFileSize));
    std::string text;
    for (size_t size = kFirstRead; text.size() < limit && !hasAllPages(text); size *= 4) {
        text.resize(std::min(size, limit));
        file.seekg(end - static_cast<std::streamoff>(text.size()));
        if (!file.read(text.data(), static_cast<std::streamsize>(text.size())))
            return {};
    }
    return text;
}

} // namespace

UsageNames UsageNames::load(Part part)
{
    for (const char* const path : {"/usr/share/misc/usb.ids", "/var/lib/usbutils/usb.ids"}) {
        UsageNames names = load(path, part);
        if (!names.empty())
            return names;
    }
    return {};
}

UsageNames UsageNames::load(const std::filesystem::path& file, Part part)
{
    std::ifstream stream(file, std::ios::binary);
    stream.rdbuf()->pubsetbuf(nullptr, 0); // it is read in large parts
    return parse(readPages(stream), part);
}

UsageNames UsageNames::parse(std::string file, Part part)
{
    UsageNames names;
    names.text_ = std::move(file);
    std::string_view text = names.text_;
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
            if (!inPage || part == Part::kPages)
                continue;
            if (const auto entry = readEntry(line.substr(1)))
                names.add(names.usages_, keyOf({page, entry->number}), entry->name);
            continue;
        }
        inPage = false;
        if (!line.starts_with(kPagePrefix))
            continue;
        if (const auto entry = readEntry(line.substr(kPagePrefix.size()))) {
            inPage = true;
            page = entry->number;
            names.add(names.pages_, page, entry->name);
        }
    }
    order(names.pages_);
    order(names.usages_);
    return names;
}

void UsageNames::add(Entries& entries, uint32_t key, std::string_view name) const
{
    entries.push_back({key, static_cast<size_t>(name.data() - text_.data()), name.size()});
}

std::optional<std::string> UsageNames::find(const Entries& entries, uint32_t key) const
{
    const auto found = std::lower_bound(entries.begin(), entries.end(), key,
        [](const Entry& entry, uint32_t wanted) { return entry.key < wanted; });
    if (found == entries.end() || found->key != key)
        return std::nullopt;
    return text_.substr(found->begin, found->size);
}

std::string UsageNames::page(uint16_t page) const
{
    return find(pages_, page).value_or("Page " + hexadecimal(page));
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
    const bool isDigit = usage.id >= kPhoneKey0 && usage.id <= kPhoneKey9;
    if (usage.page == kTelephonyPage && isDigit && !usages_.empty())
        return "Key " + std::to_string(usage.id - kPhoneKey0);
    if (auto found = find(usages_, keyOf(usage)))
        return found;
    if (usage.page == kButtonPage && usage.id != 0)
        return "Button " + std::to_string(usage.id);
    return std::nullopt;
}

} // namespace report
