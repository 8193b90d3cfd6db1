#include "tools/ctl/explain/phrases.h"

#include "tools/text/printable.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace ctl {

std::string offsetText(size_t offset)
{
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "0x%04zx", offset);
    return text.data();
}

std::string reportName(report::Layout::ReportKey key)
{
    const std::string name = std::string(report::itemName(key.kind)) + " report";
    return key.id == 0 ? "the " + name : name + ' ' + std::to_string(key.id);
}

std::string counted(uint64_t number, const std::string& noun)
{
    return std::to_string(number) + ' ' + noun + (number == 1 ? "" : "s");
}

std::string padded(std::string text, size_t width)
{
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
}

std::string listed(const std::vector<std::string>& words)
{
    std::string text;
    for (size_t i = 0; i < words.size(); ++i) {
        if (i > 0)
            text += i + 1 == words.size() ? " and " : ", ";
        text += words[i];
    }
    return text;
}

std::string collectionName(const report::Collection& collection, const report::UsageNames& names)
{
    const bool named = collection.usage != report::Usage{};
    return named ? usageName(collection.usage, names) : "unnamed";
}

std::string usageName(report::Usage usage, const report::UsageNames& names)
{
    return text::printable(names.fullUsage(usage));
}

} // namespace ctl
