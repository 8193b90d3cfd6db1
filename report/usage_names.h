// The names of usage pages and usages, from the HID usage tables in the file usb.ids.
#pragma once

#include "report/layout.h"

#include <filesystem>
#include <string_view>
#include <unordered_map>

namespace report {

// Any thread may use an object that no thread changes.
class UsageNames {
public:
    // Knows no names.
    UsageNames() = default;

    // Reads usb.ids, which the package of that name installs in one of two places. Without the file
    // the object knows no names; of a longer file than 16 MiB it knows those in that part. Blocks
    // for some milliseconds.
    [[nodiscard]] static UsageNames load();
    [[nodiscard]] static UsageNames load(const std::filesystem::path& file);
    [[nodiscard]] static UsageNames parse(std::string_view text); // of usb.ids; takes any bytes

    [[nodiscard]] bool empty() const { return pages_.empty(); }

    // As in the file, typing errors included: "Telephony", "Hook Switch". Pages and usages without
    // a name give "Page 0xff30" and "0x0031", such a usage of the Button page gives "Button 9".
    [[nodiscard]] std::string page(uint16_t page) const;
    [[nodiscard]] std::string usage(Usage usage) const;

    // For use without the page next to it: the usage's name if it has one, else page and usage,
    // "Telephony 0x0031" or "Page 0xff30 0x0020".
    [[nodiscard]] std::string fullUsage(Usage usage) const;

private:
    [[nodiscard]] std::optional<std::string> name(Usage usage) const;

    std::unordered_map<uint16_t, std::string> pages_;
    std::unordered_map<uint32_t, std::string> usages_; // page in the upper half
};

} // namespace report
