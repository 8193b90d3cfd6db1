// Templates and masks: what is sent, and which reports match.
#include "hid/model/ReportTemplate.h"
#include "tests/support/device_file.h"

#include <gtest/gtest.h>

using test::bytesFromHex;

namespace {

TEST(ReportTemplate, CombinesWithinOneReportAndClearsAllButTheId)
{
    for (const auto& [first, second, combined] : {
             std::tuple{"03 04 00", "03 01 00", "03 05 00"},
             {"03 04 00", "04 01 00", "03 04 00"},
             {"03 04", "03 01 80", "03 05"},
             {"03 04 00", "03 01", "03 05 00"},
             {"03 04 00", "", "03 04 00"},
             {"", "03 01", ""},
         })
        EXPECT_EQ(KX::Combined(bytesFromHex(first), bytesFromHex(second)), bytesFromHex(combined));
    EXPECT_EQ(KX::Cleared(bytesFromHex("03 05 ff")), bytesFromHex("03 00 00"));
    EXPECT_EQ(KX::Cleared(bytesFromHex("03")), bytesFromHex("03"));
}

TEST(ReportTemplate, MatchesByInclusionAndExactLength)
{
    for (const auto& [mask, report, matches] : {
             std::tuple{"03 01 00", "03 01 00", true},
             {"03 01 00", "03 ff ff", true},
             {"01 01", "03 01", true}, // the report id, too
             {"03 01 00", "01 01 00", false},
             {"03 01 00", "03 02 00", false},
             {"03 01 00", "03 01", false},
             {"03 01 00", "03 01 00 00", false},
             {"", "", true},
             {"", "00", false},
         })
        EXPECT_EQ(KX::Matches(bytesFromHex(mask), bytesFromHex(report)), matches)
            << mask << " / " << report;
}

} // namespace
