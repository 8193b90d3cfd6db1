#include "report/meaning.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>
#include <utility>

namespace report {
namespace {

using Values = std::span<const Value>;
using Word = ReportWords::Word;

constexpr uint16_t kFirstVendorPage = 0xff00;
constexpr size_t kMaxDataValues = 64; // in one word

// The values of the field that the first of them belongs to.
Values ofOneField(Values values)
{
    const auto end = std::ranges::find_if(
        values, [&](const Value& value) { return value.field != values.front().field; });
    return values.first(static_cast<size_t>(end - values.begin()));
}

bool holdsData(const Field& field)
{
    if (field.count < 2)
        return false;
    if (field.usages.empty() || (field.isVariable() && field.usageCount() == 1))
        return true;
    const bool vendor = field.usages.front().minimum.page >= kFirstVendorPage;
    return vendor && (!field.isVariable() || field.size >= 8);
}

// A value that is on or off, if its range or its size allows no others.
bool isSwitch(const Value& value)
{
    const Field& field = *value.field;
    const bool rangeOfTwo = field.logicalMinimum == 0 && field.logicalMaximum == 1;
    return field.size == 1 || (rangeOfTwo && value.inRange);
}

bool sameValues(Values a, Values b)
{
    return std::ranges::equal(a, b, {}, &Value::value, &Value::value);
}

// Puts one report into words, in comparison with the one before it.
class Describer {
public:
    explicit Describer(const UsageNames& names)
        : names_(names)
    {
    }

    // `before` has the same values or fewer, or more if this report is shorter.
    std::vector<Word> describe(Values now, Values before)
    {
        while (!now.empty()) {
            const Values field = ofOneField(now);
            const Values fieldBefore = before.first(std::min(field.size(), before.size()));
            describeField(field, fieldBefore);
            now = now.subspan(field.size());
            before = before.subspan(fieldBefore.size());
        }
        return std::move(words_);
    }

private:
    void describeField(Values now, Values before)
    {
        const Field& field = *now.front().field;
        if (holdsData(field))
            addData(now, before);
        else if (field.isVariable())
            addVariables(now, before);
        else
            addArray(now, before);
    }

    void addData(Values now, Values before)
    {
        const auto isZero = [](const Value& value) { return value.value == 0; };
        const bool wasZero = std::ranges::all_of(before, isZero);
        const bool changed = !sameValues(now, before);
        if (std::ranges::all_of(now, isZero) && (wasZero || !changed))
            return;
        words_.push_back({nameOf(*now.front().field) + ": " + hexadecimal(now), changed});
    }

    void addVariables(Values now, Values before)
    {
        for (size_t i = 0; i < now.size(); ++i) {
            const bool changed = i >= before.size() || before[i].value != now[i].value;
            const bool becameZero = i < before.size() && changed;
            if (now[i].value != 0 || becameZero)
                words_.push_back({variable(now[i]), changed});
        }
    }

    // The place of a usage in an array means nothing.
    void addArray(Values now, Values before)
    {
        const std::set<Element> pressed = elementsOf(now);
        const std::set<Element> pressedBefore = elementsOf(before);
        const bool input = now.front().field->kind == ReportKind::kInput;
        for (const Element& element : pressed)
            words_.push_back(
                {nameOf(element) + (input ? " pressed" : " on"), !pressedBefore.contains(element)});
        for (const Element& element : pressedBefore) {
            if (!pressed.contains(element))
                words_.push_back({nameOf(element) + (input ? " released" : " off"), true});
        }
    }

    // What an array contains: a usage, or a value that no usage is given for.
    using Element = std::pair<Usage, int64_t>;

    // Usage 0 of a page stands for no control.
    static std::set<Element> elementsOf(Values values)
    {
        std::set<Element> elements;
        for (const Value& value : values) {
            if (value.usage.id != 0)
                elements.emplace(value.usage, 0);
            else if (value.usage.page == 0 && value.inRange && value.value != 0)
                elements.emplace(value.usage, value.value);
        }
        return elements;
    }

    std::string nameOf(const Element& element) const
    {
        const auto& [usage, value] = element;
        return usage == Usage{} ? "Value " + std::to_string(value) : names_.fullUsage(usage);
    }

    std::string variable(const Value& value) const
    {
        const std::string name
            = value.usage == Usage{} ? "Unnamed value" : names_.fullUsage(value.usage);
        if (isSwitch(value))
            return name + (value.value == 0 ? " off" : " on");
        return name + ' ' + std::to_string(value.value);
    }

    std::string nameOf(const Field& field) const
    {
        return field.usages.empty() ? "Data" : names_.fullUsage(field.usages.front().minimum);
    }

    // Without the zeros at the end.
    static std::string hexadecimal(Values values)
    {
        const auto isNotZero = [](const Value& value) { return value.value != 0; };
        const auto last = std::find_if(values.rbegin(), values.rend(), isNotZero);
        const Values shown = values.first(static_cast<size_t>(values.rend() - last));
        const uint32_t bits = std::min<uint32_t>(values.front().field->size, 64);
        const uint64_t mask = ~uint64_t{0} >> (64 - bits);
        std::string text;
        std::array<char, 24> digits{};
        for (const Value& value : shown.first(std::min(shown.size(), kMaxDataValues))) {
            std::snprintf(digits.data(), digits.size(), "%0*llx", static_cast<int>((bits + 3) / 4),
                static_cast<unsigned long long>(static_cast<uint64_t>(value.value) & mask));
            text += (text.empty() ? "" : " ") + std::string(digits.data());
        }
        if (shown.size() > kMaxDataValues)
            text += " and " + std::to_string(shown.size() - kMaxDataValues) + " more";
        const size_t zeros = values.size() - shown.size();
        if (zeros != 0)
            text += (text.empty() ? "" : " then ") + std::to_string(zeros)
                + (zeros == 1 ? " zero" : " zeros");
        return text;
    }

    const UsageNames& names_;
    std::vector<Word> words_;
};

std::string bytes(size_t count)
{
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

// A null value is outside of the range on purpose, and so is one of an array. The range of data is
// often wrong.
bool isWrong(const Value& value)
{
    const Field& field = *value.field;
    return !value.inRange && field.isVariable() && !(field.flags & Field::kNullState)
        && !holdsData(field);
}

} // namespace

ReportWords::ReportWords(const Layout& layout, const UsageNames& names)
    : layout_(layout)
    , names_(names)
{
}

std::vector<Word> ReportWords::describe(const ReportView& report)
{
    DecodedReport decoded = decode(layout_, report);
    Last& last = last_[report.key];
    std::vector<Word> words = Describer(names_).describe(decoded.values, last.values);
    std::vector<std::string> faults = faultsOf(decoded);
    for (const std::string& fault : faults)
        words.push_back({fault, std::ranges::find(last.faults, fault) == last.faults.end()});
    last = {std::move(decoded.values), std::move(faults)};
    return words;
}

std::vector<std::string> ReportWords::faultsOf(const DecodedReport& report) const
{
    if (!report.known) {
        const std::string kind = kindName(report.key.kind);
        return {layout_.usesReportIds
                ? "unknown " + kind + " report " + std::to_string(report.key.id)
                : "unknown " + kind + " report"};
    }
    std::vector<std::string> faults;
    const size_t idSize = layout_.usesReportIds ? 1 : 0;
    if (report.size != report.expectedSize)
        faults.push_back(bytes(report.size + idSize) + " long instead of "
            + std::to_string(report.expectedSize + idSize));
    const auto wrong = std::ranges::count_if(report.values, isWrong);
    if (wrong != 0) {
        const auto first = std::ranges::find_if(report.values, isWrong);
        faults.push_back(names_.fullUsage(first->usage)
            + (wrong == 1 ? "" : " and " + std::to_string(wrong - 1) + " more") + " out of range");
    }
    return faults;
}

std::string ReportWords::line(const ReportView& report, std::string_view changedMark)
{
    std::string text;
    for (const Word& word : describe(report)) {
        text += (text.empty() ? "" : ", ") + word.text;
        if (word.changed)
            text += changedMark;
    }
    return text.empty() ? "nothing on" : text;
}

} // namespace report
