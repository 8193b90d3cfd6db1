#include "fuzz/layout_difference.h"
#include "report/layout.h"
#include "tests/support/device_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>

namespace {

std::string hex(uint32_t number)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%x", number);
    return text.data();
}

std::string text(report::Usage usage)
{
    return hex(usage.page) + ":" + hex(usage.id);
}

// "I3 +8 2x1 0..1 b:20 b:21": kind and report id, first bit, count and size, logical range; then
// the usage of each value, or of an array "{" and all its usages.
std::string text(const report::Field& field)
{
    std::string line = std::string(1, "IOF"[static_cast<size_t>(field.kind)])
        + std::to_string(field.reportId) + " +" + std::to_string(field.bitOffset) + " "
        + std::to_string(field.count) + "x" + std::to_string(field.size) + " "
        + std::to_string(field.logicalMinimum) + ".." + std::to_string(field.logicalMaximum);
    if (field.isPadding())
        return line + " padding";
    if (!field.isVariable())
        line += " {";
    const uint64_t usages = field.isVariable() ? field.count : field.usageCount();
    for (uint64_t i = 0; i < usages; ++i)
        line += " " + text(field.usageAt(i));
    return line;
}

std::string fields(const std::string& descriptor)
{
    std::string lines;
    for (const report::Field& field : report::readLayout(test::bytesFromHex(descriptor)).fields)
        lines += (lines.empty() ? "" : "; ") + text(field);
    return lines;
}

TEST(Layout, HasTheFieldsThatTheItemsGive)
{
    for (const auto& [items, expected] : {
             std::pair{"050b 25017501 9502 09200921 8102", "I0 +0 2x1 0..1 b:20 b:21"},
             {"050b 25017501 9502 19202921 8102", "I0 +0 2x1 0..1 b:20 b:21"},
             {"050b 25017501 9503 192029210917 8102", "I0 +0 3x1 0..1 b:20 b:21 b:17"},
             // The page is the one at the Main item, unless the usage has its own.
             {"050b 25017501 9501 0920 0508 9102", "O0 +0 1x1 0..1 8:20"},
             {"050b 25017501 9502 0b17000800 0920 9102", "O0 +0 2x1 0..1 8:17 b:20"},
             {"050b 25017501 9502 1b17000800 2918 9102", "O0 +0 2x1 0..1 8:17 8:18"},
             {"050b 25017501 9502 1917 2b18000800 9102", "O0 +0 2x1 0..1 8:17 8:18"},
             {"050b 25017501 9502 2918 1917 9102", "O0 +0 2x1 0..1 b:17 b:18"},
             {"0600ff 25017501 9502 1affff 2affff 9102", "O0 +0 2x1 0..1 ff00:ffff ff00:ffff"},
             // Ranges that are none, and half ranges, are left out.
             {"050b 25017501 9501 1921 2920 1b01000800 2b02000900 1917 0920 9102",
                 "O0 +0 1x1 0..1 b:20"},
             {"050b 25017501 9501 1917 1918 2919 9102", "O0 +0 1x1 0..1 b:18"},
             // The last usage is that of the values that remain; surplus usages are not used.
             {"050b 25017501 9503 09200921 8102", "I0 +0 3x1 0..1 b:20 b:21 b:21"},
             {"050b 25017501 9501 09200921 8102", "I0 +0 1x1 0..1 b:20"},
             {"050b 25017501 9501 8102 0920 8102", "I0 +0 1x1 0..1 0:0; I0 +1 1x1 0..1 b:20"},
             // Local items are for one Main item only, also before a Collection or its end.
             {"050b 25017501 9501 0920 a101 0921 c0 8102", "I0 +0 1x1 0..1 0:0"},
             {"050b 25017501 9501 0920 8102 8102", "I0 +0 1x1 0..1 b:20; I0 +1 1x1 0..1 0:0"},
             // Of alternatives the first one counts: a usage or a range.
             {"050b 25017501 9503 0901 a901 09200921 a900 a901 190529072930 0931 a900 8102",
                 "I0 +0 3x1 0..1 b:1 b:20 b:5"},
             {"050b 25017501 9502 a901 0920 a901 0921 a902 0922 a900 0923 8102",
                 "I0 +0 2x1 0..1 b:20 b:23"},
             {"050b 25017501 9501 a901 0920 8102 09210922 8102",
                 "I0 +0 1x1 0..1 b:20; I0 +1 1x1 0..1 b:21"},
             // A negative minimum gives signs to both; otherwise the maximum has none.
             {"0508 75089501 1581 257f 8100 1500 25ff 8100 1580 26ff00 8100 16ff7f 27ffffffff 8100",
                 "I0 +0 1x8 -127..127 {; I0 +8 1x8 0..255 {; I0 +16 1x8 -128..255 {; "
                 "I0 +24 1x8 32767..4294967295 {"},
             {"0508 75089501 25ff 15ff 8100 1700000080 24 8100",
                 "I0 +0 1x8 -1..-1 {; I0 +8 1x8 -2147483648..0 {"},
             // Saved are all globals, and several times.
             {"050b 1501 2502 7503 9504 8505 a4 0508 1500 2501 7501 9502 8506 a4 7507 b4 0909 8102"
              "b4 0920 8100 b4 0921 8100",
                 "I6 +0 2x1 0..1 8:9 8:9; I5 +0 4x3 1..2 { b:20; I5 +12 4x3 1..2 { b:21"},
             // Kinds and ids have their own bits.
             {"750b 9502 8100 9100 b100 8503 8100 8504 8100 8503 8100",
                 "I0 +0 2x11 0..0 {; O0 +0 2x11 0..0 {; F0 +0 2x11 0..0 {; I3 +0 2x11 0..0 {; "
                 "I4 +0 2x11 0..0 {; I3 +22 2x11 0..0 {"},
             {"75019501 8500 8100 860001 8100 85ff 8100",
                 "I0 +0 1x1 0..0 {; I0 +1 1x1 0..0 {; I255 +0 1x1 0..0 {"},
             // Constant fields are padding unless they have usages for their values.
             {"050b 75019502 8103 8101 0920 8101 09210922 8103",
                 "I0 +0 2x1 0..0 padding; I0 +2 2x1 0..0 padding; I0 +4 2x1 0..0 padding; "
                 "I0 +6 2x1 0..0 b:21 b:22"},
             // No bits, more bits than a report can have, and a field after those.
             {"7500 9503 8100 7501 9500 8100 9501 8100",
                 "I0 +0 0x0 0..0 {; I0 +0 0x1 0..0 {; I0 +0 1x1 0..0 {"},
             {"75ff 96ffff 8100 8100", "I0 +0 2055x255 0..0 {; I0 +524272 0x255 0..0 {"},
             {"77ffffffff 97ffffffff 8100 75019501 8100",
                 "I0 +0 0x4294967295 0..0 {; I0 +524272 0x1 0..0 {"},
             // Skipped: long items, reserved items, and one that is cut off.
             {"7501 fe0212 9503 9501 fc fd00 ff00000000 f0 8100 7502 8100 a4 b0 8100 82",
                 "I0 +0 1x1 0..0 {; I0 +1 1x2 0..0 {; F0 +0 1x2 0..0 {; I0 +3 1x2 0..0 {"},
             {"75089501 8100 fe", "I0 +0 1x8 0..0 {"},
             {"75089501 8100 fe0312 8100", "I0 +0 1x8 0..0 {"},
             {"", ""},
         })
        EXPECT_EQ(fields(items), expected) << items;
}

TEST(Layout, HasTheCollectionsOfEachField)
{
    const report::Layout layout = report::readLayout(
        test::bytesFromHex("050b 0905 a101 8100 0508 0920 0921 a102 0b07000b00 a1ff 8100 c0 8100 "
                           "c0 a100 8100 c0 8100"));
    std::string paths;
    for (const report::Field& field : layout.fields) {
        for (const report::Collection* const collection : layout.collectionPath(field))
            paths += text(collection->usage) + (collection->extendedUsage ? "!" : "") + "/"
                + std::to_string(collection->type) + "@" + std::to_string(collection->offset) + " ";
        paths += "; ";
    }
    EXPECT_EQ(paths,
        "b:5/1@4 ; b:5/1@4 8:20/2@14 b:7!/255@21 ; b:5/1@4 8:20/2@14 ; b:5/1@4 0:0/0@29 ; "
        "b:5/1@4 ; ");
}

TEST(Layout, HasTheSizeOfEachReportOnTheWire)
{
    using enum report::ReportKind;
    const auto sizes = [](const std::string& items) {
        const report::Layout layout = report::readLayout(test::bytesFromHex(items));
        std::string line;
        for (const report::ReportKind kind : {kInput, kOutput, kFeature})
            for (const int id : {0, 1, 2})
                if (const auto size = layout.wireSize({kind, static_cast<uint8_t>(id)}))
                    line += std::to_string(static_cast<int>(kind)) + std::to_string(id) + "="
                        + std::to_string(*size) + " ";
        return line;
    };
    EXPECT_EQ(sizes("7508 9503 8100 7501 8100 b100"), "00=4 20=1 ");
    EXPECT_EQ(sizes("7508 9503 8501 8100 8502 9100 8501 8100"), "01=7 12=4 ");
    EXPECT_EQ(sizes("7508 97ffffffff 8501 8100"), "01=65535 ");
}

TEST(Layout, NamesWhatDoesNotFollowTheDefinition)
{
    // "[" begins a collection with fields of one bit, "." is a field.
    const auto problems = [](const std::string& text) {
        std::string items;
        for (const char c : text)
            items += c == '[' ? "050b0905a101 1500 2501 7501 9501 "
                : c == '.'    ? "0920 8102"
                              : std::string(1, c);
        std::string lines;
        for (const auto& [offset, problem] : report::readLayout(test::bytesFromHex(items)).problems)
            lines += (lines.empty() ? "" : "; ") + std::to_string(offset) + " " + problem;
        return lines;
    };
    for (const auto& [items, expected] : {
             std::pair{"[ . c0", ""},
             {"[ a500 a4 b4 b4 fe0110ff 3500 450165007900 . c0", ""},
             {"[ 85ff . 850a . c0", ""},
             {"[ 91018101 070b000000 a9010920 0921 a900 8102 c0", ""},
             {"[ c0c0", "15 End Collection without a Collection"},
             {"[ a100", "4 Collection without its end; 14 Collection without its end"},
             {"[ b4 c0", "14 Pop without a Push"},
             {"[ a4 a4 c0", "14 Push without a Pop; 15 Push without a Pop"},
             {"[ 8500 86000185ff . c0",
                 "14 Report ID that is not from 1 to 255; 16 Report ID that is not from 1 to 255"},
             {"[ . 8103 8503 . c0", "16 Input without a Report ID; others have one"},
             {"050b 2501 75019501 .", "10 Input outside of all collections"},
             {"[ 7500 . 7501 9500 9101 c0",
                 "18 Input without bits: Report Size or Report Count is 0; "
                 "24 Output without bits: Report Size or Report Count is 0"},
             {"[ 9600ff 75ff b101 c0", "19 Report longer than 65535 bytes"},
             {"[ 0921 . 09200921 8100 c0", "18 Input with more usages than values"},
             {"050b 0905 a101 75019501 . c0", "12 Input without a Logical Maximum"},
             {"[ 1502 . c0", "18 Logical Minimum above Logical Maximum"},
             {"[ 1920 . 2920 . c0",
                 "14 Usage Minimum without a Usage Maximum; "
                 "20 Usage Maximum without a Usage Minimum"},
             {"[ 1920 1920 2920 8102 1920",
                 "4 Collection without its end; 14 Usage Minimum without a Usage Maximum; "
                 "22 Usage Minimum without a Usage Maximum"},
             {"[ 1921 2920 . c0", "16 Usage Minimum above Usage Maximum"},
             {"[ 1b20000b00 2b21000800 . c0",
                 "19 Usage Minimum and Usage Maximum on different pages"},
             {"[ 1b20000b00 2920 8102 c0",
                 "19 Only one of Usage Minimum and Usage Maximum has a page"},
             {"[ a900 a901 a901 0920 a902 8102 c0",
                 "14 Delimiter that closes no set; 16 Delimiter that is not closed before the Main "
                 "item; 18 Delimiter in a set of another Delimiter; "
                 "22 Delimiter that neither opens nor closes a set"},
             {"[ 0500 0920 0921 9502 8102 07000001000b20000b00 0920 8102 c0",
                 "16 Usage without a Usage Page; 24 Usage Page above 0xffff; "
                 "34 Usage without a Usage Page"},
             {"[ f0 0c 54 fc c0", "14 Reserved item; 15 Reserved item; 17 Reserved item"},
             {"[ c0 82 01", "15 The descriptor ends within this item"},
             {"[ c0 fe", "15 The descriptor ends within this item"},
         })
        EXPECT_EQ(problems(items), expected) << items;
}

// Random items that a descriptor can have, with values that are probable.
std::vector<uint8_t> randomDescriptor(uint32_t seed)
{
    std::mt19937 random(seed); // NOLINT(bugprone-random-generator-seed): the same in each run
    const auto pick
        = [&random](const auto& list) { return *(std::begin(list) + random() % std::size(list)); };
    constexpr uint8_t tags[] = {0x80, 0x80, 0x80, 0x90, 0x90, 0xB0, 0xA0, 0xA0, 0xC0, 0x04, 0x04,
        0x14, 0x24, 0x24, 0x74, 0x74, 0x94, 0x94, 0x84, 0xA4, 0xB4, 0x08, 0x08, 0x08, 0x18, 0x28,
        0x18, 0x28, 0xA8, 0xA8, 0xFC, 0x54};
    constexpr uint32_t values[] = {0, 1, 2, 3, 7, 8, 0x0B, 0x10, 0x20, 0x21, 0x22, 0x7F, 0x80, 0xFF,
        0x100, 0x102, 0x7FFF, 0x8000, 0xFFFF, 0x10000, 0x80017, 0x80021, 0xB0020, 0xFF000001,
        0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    std::vector<uint8_t> bytes;
    for (size_t items = random() % 60; items > 0; --items) {
        const uint8_t tag = pick(tags);
        const uint32_t value = pick(values);
        const uint32_t size = random() % 8 == 0 ? random() % 4
            : value > 0xFFFF                    ? 3
            : value > 0xFF                      ? 2
                                                : 1;
        bytes.push_back(static_cast<uint8_t>(tag | size));
        for (uint32_t i = 0; i < (size == 3 ? 4 : size); ++i)
            bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
    }
    return bytes;
}

TEST(Layout, IsTheOneOfASecondReading)
{
    for (uint32_t seed = 0; seed < 5'000; ++seed) {
        const std::vector<uint8_t> descriptor = randomDescriptor(seed);
        ASSERT_EQ(naive::LayoutDifference(descriptor), "") << report::toHex(descriptor);
    }
}

} // namespace
