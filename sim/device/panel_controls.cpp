#include "sim/device/panel_controls.h"

#include "sim/device/usage_text.h"

#include <algorithm>
#include <array>
#include <set>

namespace sim {
namespace {

using report::Field;
using report::kButtonPage;
using report::kConsumerPage;
using report::kLedPage;
using report::kTelephonyPage;
using report::Usage;

struct Name {
    Usage usage;
    const char* name;
    const char* label;
};

// These do not depend on usb.ids, because scripts contain them.
constexpr std::array kNames = {
    Name{kHookUsage, "hook", "Hook Switch"},
    Name{{kTelephonyPage, 0x21}, "flash", "Flash"},
    Name{{kTelephonyPage, 0x2f}, "mute", "Phone Mute"},
    Name{{kTelephonyPage, 0x97}, "busy", "Line Busy Tone"},
    Name{{kLedPage, 0x09}, "mute", "Mute"},
    Name{kOffHookLedUsage, "off-hook", "Off-Hook"},
    Name{{kLedPage, 0x18}, "ring", "Ring"},
    Name{{kLedPage, 0x1e}, "speaker", "Speaker"},
    Name{{kLedPage, 0x20}, "hold", "Hold"},
    Name{{kLedPage, 0x21}, "microphone", "Microphone"},
    Name{{kLedPage, 0x2a}, "on-line", "On-Line"},
};

const Name* fixedName(Usage usage)
{
    const auto found = std::ranges::find(kNames, usage, &Name::usage);
    return found == kNames.end() ? nullptr : &*found;
}

bool isNamed(Usage usage, const report::UsageNames& names)
{
    return fixedName(usage) || !names.usage(usage).starts_with("0x");
}

// In lower case, with a hyphen for each run of other characters than letters and digits.
std::string word(std::string_view text)
{
    std::string word;
    for (const char c : text) {
        const bool upper = c >= 'A' && c <= 'Z';
        if (upper || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            word += upper ? static_cast<char>(c - 'A' + 'a') : c;
        else if (!word.empty() && word.back() != '-')
            word += '-';
    }
    while (!word.empty() && word.back() == '-')
        word.pop_back();
    return word;
}

// Of a usage without a fixed name.
std::string nameOf(Usage usage, const report::UsageNames& names)
{
    const std::string name = isNamed(usage, names) ? word(names.usage(usage)) : "";
    return name.empty() ? usageText(usage) : name;
}

// A value that is on or off, if its size or its range allows no others.
bool isSwitch(const Field& field)
{
    return field.size == 1 || (field.logicalMinimum == 0 && field.logicalMaximum == 1);
}

class Finder {
public:
    Finder(const report::Layout& layout, const report::UsageNames& names)
        : layout_(layout)
        , names_(names)
    {
    }

    // Finds the controls for which `wanted` returns true.
    template <class Wanted>
    std::vector<Control> find(report::ReportKind kind, Wanted wanted)
    {
        for (const Field& field : layout_.fields) {
            if (field.kind != kind || field.isPadding())
                continue;
            const uint64_t end = controlsOf(field);
            for (const report::UsageRange& range : field.usages)
                findIn(field, range, end, wanted);
        }
        nameAll();
        return std::move(found_);
    }

private:
    // The usages of all fields together may be billions.
    static constexpr uint64_t kMaxExamined = 1 << 18;

    template <class Wanted>
    void findIn(const Field& field, const report::UsageRange& range, uint64_t end, Wanted wanted)
    {
        const uint64_t size = range.maximum - range.minimum.id + uint64_t{1};
        for (uint64_t i = 0; i < size && range.index + i < end && hasRoom(); ++i) {
            ++examined_;
            const Usage usage{range.minimum.page, static_cast<uint16_t>(range.minimum.id + i)};
            if (wanted(field, range, usage))
                found_.push_back({{}, {}, usage, &field, range.index + i});
        }
    }

    bool hasRoom() const { return found_.size() < kMaxControls && examined_ < kMaxExamined; }

    // Values without a usage of their own repeat the last one. They are no further controls.
    static uint64_t controlsOf(const Field& field)
    {
        if (field.isVariable() || field.count == 0)
            return field.count;
        const int64_t values = field.logicalMaximum - field.logicalMinimum + 1;
        return static_cast<uint64_t>(std::max<int64_t>(values, 0));
    }

    // Fixed names come first: a Consumer button "Mute" does not take that of the telephony button.
    void nameAll()
    {
        for (Control& control : found_)
            if (const Name* const fixed = fixedName(control.usage))
                name(control, fixed->name, fixed->label);
        for (Control& control : found_)
            if (control.name.empty())
                name(control, nameOf(control.usage, names_), names_.fullUsage(control.usage));
    }

    void name(Control& control, const std::string& name, std::string label)
    {
        control.label = std::move(label);
        control.name = name;
        unsigned& number = numbers_[name];
        while (!taken_.insert(control.name).second) {
            number = std::max(number + 1, 2U);
            control.name = name + '-' + std::to_string(number);
        }
    }

    const report::Layout& layout_;
    const report::UsageNames& names_;
    std::vector<Control> found_;
    uint64_t examined_ = 0;
    std::map<std::string, unsigned> numbers_; // the last one that was added to the name
    std::set<std::string> taken_;
};

} // namespace

std::vector<Control> findButtons(const report::Layout& layout, const report::UsageNames& names)
{
    const auto wanted = [&](const Field& field, const report::UsageRange& range, Usage usage) {
        const bool mayBeButton = usage.page == kTelephonyPage || usage.page == kConsumerPage
            || usage.page == kButtonPage;
        if (field.isVariable())
            return mayBeButton && isSwitch(field);
        const bool standsForNone = usage.id == 0;
        return mayBeButton && !standsForNone && (!range.isRange || isNamed(usage, names));
    };
    return Finder(layout, names).find(report::ReportKind::kInput, wanted);
}

std::vector<Control> findLamps(const report::Layout& layout, const report::UsageNames& names)
{
    const auto wanted = [](const Field& field, const report::UsageRange&, Usage usage) {
        return usage.page == kLedPage && (field.isVariable() || usage.id != 0);
    };
    return Finder(layout, names).find(report::ReportKind::kOutput, wanted);
}

} // namespace sim
