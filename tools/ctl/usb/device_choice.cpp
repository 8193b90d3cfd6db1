#include "tools/ctl/usb/device_choice.h"

#include "tools/ctl/cli/failure.h"
#include "tools/ctl/cli/output.h"
#include "tools/ctl/usb/device_words.h"
#include "tools/text/printable.h"
#include "tools/text/suggestion.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace ctl {
namespace {

using Devices = std::vector<ScannedDevice>;

constexpr std::string_view kDecimalDigits = "0123456789";
constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
constexpr size_t kIdSize = 4;
constexpr size_t kIdsSize = 2 * kIdSize + 1;
constexpr size_t kMaxNumberSize = 4;

constexpr const char* kHowToChoose
    = "choose by ids (vvvv:pppp), path or number, see kelprobectl list";

bool isHex(std::string_view text, size_t digits)
{
    return text.size() == digits && text.find_first_not_of(kHexDigits) == text.npos;
}

bool isIds(std::string_view text)
{
    return text.size() == kIdsSize && text[kIdSize] == ':'
        && isHex(text.substr(0, kIdSize), kIdSize) && isHex(text.substr(kIdSize + 1), kIdSize);
}

bool isNumber(std::string_view text)
{
    return !text.empty() && text.size() <= kMaxNumberSize
        && text.find_first_not_of(kDecimalDigits) == text.npos;
}

// Removes a decimal number from the beginning of `text`. False if there is none.
bool takeNumber(std::string_view& text)
{
    const size_t size = std::min(text.find_first_not_of(kDecimalDigits), text.size());
    text.remove_prefix(size);
    return size > 0;
}

bool take(std::string_view& text, char c)
{
    const bool found = text.starts_with(c);
    text.remove_prefix(found ? 1 : 0);
    return found;
}

// hidapi's current form, "1-2.3:1.0".
bool isPortPath(std::string_view text)
{
    if (!takeNumber(text) || !take(text, '-') || !takeNumber(text))
        return false;
    while (take(text, '.')) {
        if (!takeNumber(text))
            return false;
    }
    return take(text, ':') && takeNumber(text) && take(text, '.') && takeNumber(text)
        && text.empty();
}

// That of older versions, "0001:0002:00".
bool isAddressPath(std::string_view text)
{
    return text.size() == kIdsSize + 3 && isIds(text.substr(0, kIdsSize)) && text[kIdsSize] == ':'
        && isHex(text.substr(kIdsSize + 1), 2);
}

bool isPath(std::string_view text)
{
    return isPortPath(text) || isAddressPath(text);
}

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

ScannedDevice& byNumber(Devices& devices, const std::string& choice)
{
    size_t number = 0;
    std::from_chars(choice.data(), choice.data() + choice.size(), number);
    if (number < 1 || number > devices.size())
        throw Failure(kNoAccess,
            "there is no device " + choice + "; kelprobectl list shows "
                + std::to_string(devices.size()));
    return devices[number - 1];
}

[[noreturn]] void failNotFound(const Devices& devices, const std::string& choice)
{
    std::vector<std::string> names;
    for (const ScannedDevice& device : devices)
        names.push_back(isIds(choice) ? idsText(device.entry) : device.entry.path);
    const std::vector<std::string_view> views(names.begin(), names.end());
    const std::string_view nearest = text::nearest(choice, views);
    throw Failure(kNoAccess,
        "device " + choice + " is not present; "
            + (nearest.empty() ? "kelprobectl list shows those that are"
                               : "did you mean " + std::string(nearest) + '?'));
}

ScannedDevice& chosen(Devices& devices, const std::string& choice)
{
    if (isNumber(choice))
        return byNumber(devices, choice);
    if (!isIds(choice) && !isPath(choice))
        throw Failure(kWrongUse,
            '"' + text::printable(choice) + "\" does not name a device; "
                + std::string(kHowToChoose));
    const std::string wanted = lowerCase(choice);
    const auto found
        = std::find_if(devices.begin(), devices.end(), [&](const ScannedDevice& device) {
              return isIds(wanted) ? idsText(device.entry) == wanted : device.entry.path == wanted;
          });
    if (found == devices.end())
        failNotFound(devices, choice);
    return *found;
}

[[noreturn]] void failWithoutTelephony(const Devices& devices)
{
    throw Failure(kNoAccess,
        devices.empty() ? "no HID device is present; plug one in, or try a simulated one"
                        : "no device has telephony controls; " + std::string(kHowToChoose));
}

// Whether the device cannot be ruled out, as one that another program has.
bool isUnknown(const ScannedDevice& device)
{
    return device.entry.descriptor.empty() && !device.interface.boot
        && device.interface.announcedLength > 0;
}

std::string whyUnknown(const DeviceEntry& entry)
{
    return entry.accessText.empty() ? "it does not return its report descriptor; plug it in again"
                                    : entry.accessText;
}

[[noreturn]] void failUndecided(const std::vector<ScannedDevice*>& candidates)
{
    std::string list;
    for (const ScannedDevice* const device : candidates) {
        const DeviceEntry& entry = device->entry;
        list += (list.empty() ? "" : ", ") + std::to_string(entry.number) + " = " + idsText(entry)
            + ' ' + shortNameText(entry) + " at " + text::printable(entry.path);
        if (isUnknown(*device)) {
            const std::string reason = whyUnknown(entry);
            list += " [" + reason.substr(0, reason.find(';')) + ']';
        }
    }
    const bool known = std::none_of(candidates.begin(), candidates.end(),
        [](const ScannedDevice* device) { return isUnknown(*device); });
    throw Failure(kWrongUse,
        (known ? "several telephony devices are present ("
               : "several devices are or may be telephony devices (")
            + list + "); " + std::string(kHowToChoose));
}

ScannedDevice& onlyTelephony(Devices& devices)
{
    std::vector<ScannedDevice*> candidates;
    for (ScannedDevice& device : devices) {
        Output::err().progress("examining " + idsText(device.entry)); // may take some seconds
        examine(device, Detail::kDescriptor);
        if (device.entry.telephony || isUnknown(device))
            candidates.push_back(&device);
    }
    Output::err().progress("");
    if (candidates.empty())
        failWithoutTelephony(devices);
    if (candidates.size() > 1)
        failUndecided(candidates);
    const DeviceEntry& entry = candidates.front()->entry;
    if (isUnknown(*candidates.front()))
        throw Failure(kNoAccess, idsText(entry) + " cannot be opened: " + whyUnknown(entry));
    return *candidates.front();
}

} // namespace

ScannedDevice& choose(Devices& devices, const std::optional<std::string>& choice)
{
    return choice ? chosen(devices, *choice) : onlyTelephony(devices);
}

DeviceEntry chooseDevice(const std::optional<std::string>& choice)
{
    const UsbContext context = startUsb();
    Devices devices = scanDevices(context.get());
    ScannedDevice& device = choose(devices, choice);
    examine(device, Detail::kClaimed);
    return device.entry;
}

bool isDeviceChoice(const std::string& text)
{
    return isIds(text) || isNumber(text) || isPath(text);
}

} // namespace ctl
