// The names of usage pages and usages, from the HID usage tables in the file usb.ids.
#pragma once

#include "report/layout.h"

#include <filesystem>
#include <unordered_map>

namespace report {

// Any thread may use an object that no thread changes.
class UsageNames {
public:
    // Knows no names.
    UsageNames() = default;

    // Reads usb.ids, which the package of that name installs in one of two places. Without the file
    // the object knows no names. Blocks for some milliseconds.
    [[nodiscard]] static UsageNames load();
    [[nodiscard]] static UsageNames load(const std::filesystem::path& file);
    [[nodiscard]] static UsageNames parse(std::string_view text); // of usb.ids; takes any bytes

    [[nodiscard]] bool empty() const { return pages_.empty(); }

    // As in the file, typing errors included: "Telephony", "Hook Switch". Pages and usages without
    // a name give "Page 0xff30" and "0x0031", a button of the Button page gives "Button 3".
    [[nodiscard]] std::string page(uint16_t page) const;
    [[nodiscard]] std::string usage(Usage usage) const;

private:
    std::unordered_map<uint16_t, std::string> pages_;
    std::unordered_map<uint32_t, std::string> usages_; // page in the upper half
};

} // namespace report
