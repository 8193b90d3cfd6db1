// The names of usage pages and usages, from the HID usage tables in the file usb.ids.
#pragma once

#include "report/layout.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace report {

// Any thread may use an object that no thread changes.
class UsageNames {
public:
    // Knows no names.
    UsageNames() = default;

    // Reads usb.ids, which the package of that name installs in one of two places, from its end,
    // where the usages are. Without the file the object knows no names; of a longer file than 16
    // MiB it knows those in the last part of that size. Blocks for some 100 microseconds, with
    // kPages for less.
    enum class Part { kAll, kPages };
    [[nodiscard]] static UsageNames load(Part part = Part::kAll);
    [[nodiscard]] static UsageNames load(const std::filesystem::path& file, Part part = Part::kAll);
    [[nodiscard]] static UsageNames parse(std::string file, Part part = Part::kAll); // any bytes

    [[nodiscard]] bool empty() const { return pages_.empty(); }

    // As in the file, typing errors included: "Telephony", "Hook Switch". Only the digits of phone
    // keys are not, because usb.ids gives most of them the next one: 0xb1 is "Key 1". Pages and
    // usages without a name give "Page 0xff30" and "0x0031", such a usage of the Button page gives
    // "Button 9".
    [[nodiscard]] std::string page(uint16_t page) const;
    [[nodiscard]] std::string usage(Usage usage) const;

    // For use without the page next to it: the usage's name if it has one, else page and usage,
    // "Telephony 0x0031" or "Page 0xff30 0x0020".
    [[nodiscard]] std::string fullUsage(Usage usage) const;

private:
    struct Entry {
        uint32_t key = 0;
        size_t begin = 0; // of the name, in text_
        size_t size = 0;
    };
    using Entries = std::vector<Entry>; // each key once, in ascending order

    void add(Entries& entries, uint32_t key, std::string_view name) const;
    [[nodiscard]] std::optional<std::string> find(const Entries& entries, uint32_t key) const;
    [[nodiscard]] std::optional<std::string> name(Usage usage) const;

    std::string text_;
    Entries pages_;
    Entries usages_; // keys with the page in the upper half
};

} // namespace report
