#include "fuzz/layout_difference.h"

#include "fuzz/naive_layout.h"
#include "report/annotation.h"
#include "report/meaning.h"

#include <algorithm>
#include <random>

namespace naive {
namespace {

constexpr size_t kMaxReportSize = 40;   // bytes
constexpr uint64_t kMaxUsageIndex = 40; // that is compared

uint32_t Number(report::Usage usage)
{
    return usage.page * 65536u + usage.id;
}

ReportName NameOf(report::Layout::ReportKey key)
{
    constexpr char kinds[] = {'I', 'O', 'F'};
    return {kinds[static_cast<size_t>(key.kind)], key.id};
}

class Comparison {
public:
    explicit Comparison(std::span<const uint8_t> descriptor)
        : descriptor_(descriptor)
        , layout_(report::readLayout(descriptor))
        , naive_(ReadLayout(descriptor))
    {
    }

    std::string Run()
    {
        CompareCollections();
        CompareReports();
        CheckAnnotation();
        if (difference_.empty())
            CompareValues();
        return difference_;
    }

private:
    void Expect(bool right, const std::string& what, size_t place)
    {
        if (!right && difference_.empty())
            difference_ = what + ", " + std::to_string(place);
    }

    void CompareCollections()
    {
        Expect(layout_.collections.size() == naive_.collections.size(), "collections", 0);
        for (const report::Collection& collection : layout_.collections) {
            const auto found = naive_.collections.find(collection.offset);
            if (found == naive_.collections.end())
                return Expect(false, "unknown collection", collection.offset);
            const auto& [type, usage, inner] = found->second;
            const bool isTop = collection.parent == report::Collection::kNone;
            Expect(collection.type == type, "collection type", collection.offset);
            Expect(Number(collection.usage) == usage, "collection usage", collection.offset);
            Expect(isTop ? !inner : inner == layout_.collections[collection.parent].offset,
                "collection parent", collection.offset);
        }
    }

    void CompareReports()
    {
        Expect(layout_.usesReportIds == naive_.hasIds, "report ids", 0);
        Expect(layout_.reportBits.size() == naive_.reports.size(), "number of reports", 0);
        size_t fieldCount = 0;
        for (const auto& [key, bits] : layout_.reportBits) {
            const auto found = naive_.reports.find(NameOf(key));
            const std::vector<size_t>& fields = layout_.reportFields[key];
            if (found == naive_.reports.end() || found->second.fields.size() != fields.size())
                return Expect(false, "fields of report", key.id);
            Expect(bits == found->second.bits, "bits of report", key.id);
            for (size_t i = 0; i < fields.size(); ++i)
                CompareField(key, layout_.fields.at(fields[i]), found->second.fields[i]);
            fieldCount += fields.size();
        }
        Expect(layout_.fields.size() == fieldCount, "number of fields", fieldCount);
    }

    void CompareField(
        report::Layout::ReportKey key, const report::Field& field, const Field& expected)
    {
        const auto expect
            = [&](bool right, const char* what) { Expect(right, what, field.offset); };
        expect(field.kind == key.kind && field.reportId == key.id, "report of field");
        expect(field.offset == expected.offset, "offset");
        expect(field.flags == expected.flags, "flags");
        expect(field.bitOffset == expected.firstBit, "bit offset");
        expect(field.size == expected.size && field.count == expected.count, "size or count");
        expect(field.logicalMinimum == expected.minimum, "minimum");
        expect(field.logicalMaximum == expected.maximum, "maximum");
        std::vector<size_t> path;
        for (const report::Collection* const collection : layout_.collectionPath(field))
            path.push_back(collection->offset);
        expect(path == expected.collections, "collections");
        const uint64_t count = field.usageCount();
        for (const uint64_t index : {uint64_t{0}, uint64_t{1}, count / 2, count - 1, count}) {
            const uint32_t usage = Number(field.usageAt(index));
            expect(usage == UsageAt(expected, index), "usage");
            const auto found = field.indexOf(field.usageAt(index));
            expect(index >= count || (found && *found <= index), "index of usage");
        }
        for (uint64_t i = 0; i < std::min(count, kMaxUsageIndex); ++i)
            expect(Number(field.usageAt(i)) == UsageAt(expected, i), "usage");
    }

    // Every byte is part of one item, and every item has words.
    void CheckAnnotation()
    {
        size_t offset = 0;
        size_t depth = 0;
        for (const report::AnnotatedItem& item : report::annotate(descriptor_, names_)) {
            const unsigned prefix = descriptor_[offset];
            const bool isEnd = prefix / 4 == 0xC0 / 4 && !item.item.truncated;
            depth -= isEnd && depth > 0 ? 1 : 0;
            Expect(item.item.offset == offset && !item.text.empty(), "item", offset);
            Expect(item.depth == depth, "depth", offset);
            depth += prefix / 4 == 0xA0 / 4 && !item.item.truncated ? 1 : 0;
            offset += item.item.bytes.size();
        }
        Expect(offset == descriptor_.size(), "annotated bytes", offset);
    }

    void CompareValues()
    {
        // One or two reports. Which they are depends on the descriptor's length.
        const size_t step = 1 + layout_.reportBits.size() / 2;
        size_t number = descriptor_.size();
        for (const auto& [key, bits] : layout_.reportBits) {
            if (++number % step != 0)
                continue;
            const size_t size = (bits + 7) / 8;
            report::ReportWords words(layout_, names_);
            for (const size_t received : {size, size, size - size / 2, size + 1})
                CompareValues(key, Payload(std::min(received, kMaxReportSize)), words);
        }
    }

    void CompareValues(report::Layout::ReportKey key, const std::vector<uint8_t>& payload,
        report::ReportWords& words)
    {
        const report::ReportView view{key, payload};
        const report::DecodedReport decoded = report::decode(layout_, view);
        std::vector<Value> values;
        for (const report::Value& value : decoded.values)
            values.push_back({value.field->offset, value.index, Number(value.usage), value.value,
                value.inRange});
        Expect(values == ReadReport(naive_.reports.at(NameOf(key)), payload), "values", key.id);
        const auto first = words.describe(view);
        CheckWords(decoded, first, words.describe(view));
        Expect(!words.line(view, "*").empty(), "line", key.id);
    }

    // A report that comes again changes nothing. Each single value that is not 0 has a word.
    void CheckWords(const report::DecodedReport& report,
        const std::vector<report::ReportWords::Word>& first,
        const std::vector<report::ReportWords::Word>& again)
    {
        Expect(first.size() >= again.size(), "words that are new", report.key.id);
        for (const auto& word : again)
            Expect(!word.changed && !word.text.empty(), word.text, report.key.id);
        for (const report::Value& value : report.values) {
            if (value.value == 0 || value.field->count != 1 || !value.field->isVariable())
                continue;
            const std::string name = names_.fullUsage(value.usage);
            Expect(Number(value.usage) == 0
                    || std::ranges::any_of(
                        again, [&](const auto& word) { return word.text.starts_with(name); }),
                "no word for " + name, value.field->offset);
        }
    }

    std::vector<uint8_t> Payload(size_t size)
    {
        constexpr uint8_t usual[] = {0x00, 0x01, 0x02, 0x80, 0xFF};
        std::vector<uint8_t> bytes(size);
        for (uint8_t& byte : bytes) {
            const auto number = static_cast<uint32_t>(random_());
            byte = number % 2 ? static_cast<uint8_t>(number >> 8) : usual[(number >> 8) % 5];
        }
        return bytes;
    }

    const std::span<const uint8_t> descriptor_;
    report::Layout layout_;
    const Layout naive_;
    const report::UsageNames names_;
    std::minstd_rand random_{1};
    std::string difference_;
};

} // namespace

std::string LayoutDifference(std::span<const uint8_t> descriptor)
{
    return Comparison(descriptor).Run();
}

} // namespace naive
