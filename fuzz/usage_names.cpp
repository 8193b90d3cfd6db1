// The names of usage pages and usages. Input: the text of a file usb.ids.
#include "report/usage_names.h"

#include "fuzz/require.h"

#include <map>
#include <sstream>
#include <utility>

namespace {

// A number and a name, with two blanks between them; the name is empty if the text is not of that
// form.
std::pair<uint16_t, std::string> NumberAndName(const std::string& text)
{
    const size_t digits = text.find_first_not_of("0123456789abcdefABCDEF");
    if (digits == 0 || digits == std::string::npos || text.substr(digits, 2) != "  ")
        return {};
    unsigned long number = 0;
    for (const char digit : text.substr(0, digits))
        number = std::min(number * 16 + std::stoul(std::string(1, digit), nullptr, 16), 0x10000UL);
    const std::string name = text.substr(digits + 2);
    if (number > 0xFFFF || name.size() > 255)
        return {};
    return {static_cast<uint16_t>(number), name};
}

struct Names {
    std::map<uint16_t, std::string> pages;
    std::map<std::pair<uint16_t, uint16_t>, std::string> usages;
};

// The first name of each counts.
Names ReadNames(const std::string& text)
{
    Names names;
    std::istringstream stream(text);
    std::pair<uint16_t, std::string> page;
    for (std::string line; std::getline(stream, line);) {
        while (!line.empty() && std::string(" \t\r").find(line.back()) != std::string::npos)
            line.pop_back();
        if (line.empty() || line.front() == '#')
            continue;
        if (line.front() != '\t') {
            page = line.starts_with("HUT ") ? NumberAndName(line.substr(4)) : NumberAndName("");
            if (!page.second.empty())
                names.pages.insert(page);
        } else if (const auto [usage, name] = NumberAndName(line.substr(1)); !name.empty()) {
            if (!page.second.empty())
                names.usages.insert({{page.first, usage}, name});
        }
    }
    return names;
}

// Phone keys have names of their own, whatever the file says.
bool IsPhoneKey(uint16_t page, uint16_t usage)
{
    return page == 0x0b && usage >= 0xb0 && usage <= 0xb9;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    const report::UsageNames names = report::UsageNames::parse(text);
    const Names expected = ReadNames(text);
    Require(names.empty() == expected.pages.empty());
    for (const auto& [page, name] : expected.pages)
        Require(names.page(page) == name);
    for (const auto& [usage, nameInFile] : expected.usages) {
        const std::string name = IsPhoneKey(usage.first, usage.second)
            ? "Key " + std::to_string(usage.second - 0xb0)
            : nameInFile;
        Require(names.usage({usage.first, usage.second}) == name);
        Require(names.fullUsage({usage.first, usage.second}) == name);
        const uint16_t next = usage.second + 1;
        const bool nextIsKnown = expected.usages.contains({usage.first, next});
        Require(nextIsKnown || names.usage({usage.first, next}).find(' ') == std::string::npos
            || usage.first == 0x09 || IsPhoneKey(usage.first, next));
    }
    return 0;
}
