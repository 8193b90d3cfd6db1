#include "report/decoder.h"
#include "tests/support/device_file.h"

#include <gtest/gtest.h>

namespace {

using enum report::ReportKind;

// "20=1 21=0!": usage and value of each, "!" if it is out of range.
std::string values(const std::string& items, const std::string& payload)
{
    const report::Layout layout = report::readLayout(test::bytesFromHex("0508 8505" + items));
    const auto bytes = report::fromHex(payload).value();
    std::string line;
    for (const report::Value& value : report::decode(layout, {{kInput, 5}, bytes}).values) {
        line += (line.empty() ? "" : " ") + report::toHex({{static_cast<uint8_t>(value.usage.id)}});
        line += "=" + std::to_string(value.value) + (value.inRange ? "" : "!");
    }
    return line;
}

TEST(Decoder, ReadsTheValuesOfAReport)
{
    for (const auto& [items, payload, expected] : {
             std::tuple{"2501 75019503 092009210922 8102", "05", "20=1 21=0 22=1"},
             // Values that begin and end inside of bytes, lowest bit first.
             {"27ffff0000 75039501 8101 750b9502 09300931 8102", "f8abcd01", "30=1407 31=1846"},
             {"26ff0f 750c9502 09300931 8102", "bc3a12", "30=2748 31=291"},
             // Signs.
             {"1581257f 75089503 0930 8102", "ff8081", "30=-1 30=-128! 30=-127"},
             {"15f82507 75049502 0930 8102", "8f", "30=-1 30=-8"},
             {"25ff 7508 9501 0930 8102", "ff", "30=255"},
             {"15ff2500 75019502 0930 8102", "01", "30=-1 30=0"},
             // Up to 64 bits, of longer ones the low 64.
             {"1700000080 27ffffff7f 75409501 0930 8102", "feffffffffffffff", "30=-2"},
             {"27ffffffff 75209501 0930 8102", "feffffff", "30=4294967294"},
             {"2501 75409501 0930 8102", "ffffffffffffffff", "30=-1!"},
             {"15ff2501 75489501 0930 8102", "01000000000000 80ff", "30=-9223372036854775807!"},
             // No range, or an empty one, contains every value.
             {"75089501 0930 8102", "ff", "30=255"},
             {"15052504 75089501 0930 8102", "ff", "30=255"},
             // Arrays: values count from the minimum. Out of range is no control.
             {"15012503 75089504 091009200930 8100", "01 03 00 04", "10=1 30=3 00=0! 00=4!"},
             {"15012509 75089502 0910 8100", "01 02", "10=1 00=2"},
             {"15fe2501 75089503 19102913 8100", "fe 01 02", "10=-2 13=1 00=2!"},
             {"15ff25fe 75409501 1910291f 8100", "ffffffffffffff7f", "00=9223372036854775807"},
             // Padding has no values. A report that is too short has those that are whole in it.
             {"2501 75019502 8103 0920 8101 09210922 8103", "ff", "21=1 22=1"},
             {"26ff00 750c9503 093009310932 8102 7508 9501 0940 8102", "bb0a", "30=2747!"},
             {"2501 75019501 0920 8102", "", ""},
             {"2501 75019501 0920 8102", "0102", "20=1"},
             {"2501 7500 9501 0920 8102", "01", ""},
         })
        EXPECT_EQ(values(items, payload), expected) << items;
}

TEST(Decoder, KnowsTheReportsAndTheirSizes)
{
    const report::Layout layout
        = report::readLayout(test::bytesFromHex("2501 7508 9502 8503 8102 9102 8504 7501 b102"));
    for (const auto& [kind, bytes, expected] : {
             std::tuple{kInput, "03 01 02", "3 known 2 of 2"},
             {kInput, "03 01 02 03", "3 known 3 of 2"},
             {kOutput, "03", "3 known 0 of 2"},
             {kFeature, "04 01", "4 known 1 of 1"},
             {kFeature, "03 01", "3 unknown 1 of 0"},
             {kInput, "", "0 unknown 0 of 0"},
         }) {
        const auto report = report::fromHex(bytes).value();
        const auto decoded = report::decode(layout, report::wireReport(layout, kind, report));
        EXPECT_EQ(std::to_string(decoded.key.id) + (decoded.known ? " known " : " unknown ")
                + std::to_string(decoded.size) + " of " + std::to_string(decoded.expectedSize),
            expected);
        EXPECT_EQ(decoded.key.kind, kind);
    }
}

TEST(Decoder, TakesTheIdFromReportsThatHaveOne)
{
    const report::Bytes bytes = {7, 8, 9};
    const auto id = [&](const report::ReportView& view) {
        return std::to_string(view.key.id) + ": " + report::toHex(view.payload);
    };
    const report::Layout plain = report::readLayout({});
    report::Layout withIds = plain;
    withIds.usesReportIds = true;
    EXPECT_EQ(id(report::wireReport(plain, kInput, bytes)), "0: 07 08 09");
    EXPECT_EQ(id(report::wireReport(withIds, kInput, bytes)), "7: 08 09");
    EXPECT_EQ(id(report::sentReport(kOutput, bytes)), "7: 08 09");
    EXPECT_EQ(id(report::sentReport(kOutput, {})), "0: ");
}

} // namespace
