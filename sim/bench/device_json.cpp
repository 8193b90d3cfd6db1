#include "sim/bench/device_json.h"

#include "sim/device/usage_text.h"
#include "sim/profile/utf16.h"
#include "tools/text/printable.h"

#include <json/value.h>

namespace sim {
namespace {

// Half a surrogate pair becomes the replacement character.
std::string validUtf8(std::u16string text)
{
    constexpr char16_t kReplacement = 0xfffd;
    const auto isHigh = [](char16_t unit) { return unit >= 0xd800 && unit < 0xdc00; };
    const auto isLow = [](char16_t unit) { return unit >= 0xdc00 && unit < 0xe000; };
    for (size_t i = 0; i < text.size(); ++i) {
        if (isHigh(text[i]) && i + 1 < text.size() && isLow(text[i + 1]))
            ++i;
        else if (isHigh(text[i]) || isLow(text[i]))
            text[i] = kReplacement;
    }
    return utf8(text).value_or("");
}

} // namespace

Json::Value deviceJson(const Profile& profile, const std::vector<Panel::ButtonState>& buttons)
{
    const UsbDeviceInfo& info = profile.info;
    Json::Value object;
    object["profile"] = profile.name;
    object["vendorId"] = hex16(info.vendorId);
    object["productId"] = hex16(info.productId);
    object["manufacturer"] = validUtf8(info.manufacturer);
    object["product"] = validUtf8(info.product);
    object["serial"] = validUtf8(info.serialNumber);
    object["reportDescriptor"] = toHex(info.controls().reportDescriptor, "");
    object["buttons"] = Json::arrayValue;
    for (const Panel::ButtonState& button : buttons) {
        Json::Value entry;
        entry["name"] = button.name;
        entry["label"] = button.label;
        entry["usage"] = usageText(button.usage);
        entry["kind"] = button.isSwitch ? "switch" : "button";
        entry["pressed"] = button.pressed;
        object["buttons"].append(entry);
    }
    return object;
}

std::string summaryOf(const Profile& profile)
{
    const UsbDeviceInfo& info = profile.info;
    const std::string product = text::printable(validUtf8(info.product));
    return text::printable(profile.name) + "  " + hex16(info.vendorId) + ':' + hex16(info.productId)
        + (product.empty() ? "" : "  " + product);
}

} // namespace sim
