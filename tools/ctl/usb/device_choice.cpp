#include "tools/ctl/usb/device_choice.h"

#include "tools/ctl/cli/command.h"
#include "tools/ctl/usb/device_words.h"
#include "tools/text/printable.h"
#include "tools/text/suggestion.h"

#include <algorithm>
#include <charconv>
#include <regex>

namespace ctl {
namespace {

using Entries = std::vector<DeviceEntry>;

constexpr const char* kHowToChoose
    = "choose by ids (vvvv:pppp), path or number, see kelprobectl list";

bool isIds(const std::string& text)
{
    static const std::regex form("[0-9a-fA-F]{4}:[0-9a-fA-F]{4}");
    return std::regex_match(text, form);
}

bool isNumber(const std::string& text)
{
    static const std::regex form("[0-9]{1,4}");
    return std::regex_match(text, form);
}

// In hidapi's current and earlier form.
bool isPath(const std::string& text)
{
    static const std::regex form("[0-9]+-[0-9.]+:[0-9]+\\.[0-9]+|"
                                 "[0-9a-fA-F]{4}:[0-9a-fA-F]{4}:[0-9a-fA-F]{2}");
    return std::regex_match(text, form);
}

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

template <typename Condition>
DeviceEntry* firstThat(Entries& entries, const Condition& condition)
{
    const auto found = std::find_if(entries.begin(), entries.end(), condition);
    return found == entries.end() ? nullptr : &*found;
}

DeviceEntry& byNumber(Entries& entries, const std::string& choice)
{
    size_t number = 0;
    std::from_chars(choice.data(), choice.data() + choice.size(), number);
    if (number < 1 || number > entries.size())
        throw Failure(kNoAccess,
            "there is no device " + choice + "; kelprobectl list shows "
                + std::to_string(entries.size()));
    return entries[number - 1];
}

[[noreturn]] void failNotFound(const Entries& entries, const std::string& choice)
{
    std::vector<std::string> names;
    for (const DeviceEntry& entry : entries)
        names.push_back(isIds(choice) ? idsText(entry) : entry.path);
    const std::vector<std::string_view> views(names.begin(), names.end());
    const std::string_view nearest = text::nearest(choice, views);
    throw Failure(kNoAccess,
        "device " + choice + " is not present; "
            + (nearest.empty() ? "kelprobectl list shows those that are"
                               : "did you mean " + std::string(nearest) + '?'));
}

DeviceEntry& chosen(Entries& entries, const std::string& choice)
{
    if (isNumber(choice))
        return byNumber(entries, choice);
    if (!isIds(choice) && !isPath(choice))
        throw Failure(kWrongUse,
            text::printable(choice) + " does not name a device; " + std::string(kHowToChoose));
    const std::string wanted = lowerCase(choice);
    DeviceEntry* const found = firstThat(entries, [&](const DeviceEntry& entry) {
        return isIds(wanted) ? idsText(entry) == wanted : entry.path == wanted;
    });
    if (!found)
        failNotFound(entries, choice);
    return *found;
}

[[noreturn]] void failWithoutTelephony(const Entries& entries)
{
    throw Failure(kNoAccess,
        entries.empty() ? "no HID device is present; plug one in, or try a simulated one"
                        : "no device has telephony controls; " + std::string(kHowToChoose));
}

[[noreturn]] void failUndecided(const Entries& entries)
{
    std::string list;
    for (const DeviceEntry& entry : entries) {
        if (entry.telephony)
            list += (list.empty() ? "" : ", ") + std::to_string(entry.number) + " = "
                + idsText(entry) + ' ' + text::printable(entry.product);
    }
    throw Failure(kWrongUse,
        "several telephony devices are present (" + list + "); " + std::string(kHowToChoose));
}

DeviceEntry& onlyTelephony(DeviceScan& scan)
{
    DeviceEntry* found = nullptr;
    bool several = false;
    for (DeviceEntry& entry : scan.entries()) {
        scan.complete(entry, Detail::kDescriptor);
        several = several || (found && entry.telephony);
        if (entry.telephony && !found)
            found = &entry;
    }
    if (!found)
        failWithoutTelephony(scan.entries());
    if (several)
        failUndecided(scan.entries());
    return *found;
}

} // namespace

DeviceEntry& chooseEntry(DeviceScan& scan, const std::optional<std::string>& choice)
{
    return choice ? chosen(scan.entries(), *choice) : onlyTelephony(scan);
}

DeviceEntry chooseDevice(const std::optional<std::string>& choice)
{
    const UsbContext context = startUsb();
    DeviceScan scan(context.get());
    DeviceEntry& entry = chooseEntry(scan, choice);
    scan.complete(entry, Detail::kDescriptorAndAccess);
    return entry;
}

bool isDeviceChoice(const std::string& text)
{
    return isIds(text) || isNumber(text) || isPath(text);
}

} // namespace ctl
