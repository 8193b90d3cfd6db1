// Templates and masks: what is sent, and which reports are heard.
#include "ReportTemplate.h"
#include "TelephonyControls.h"
#include "device_file.h"

#include <gtest/gtest.h>

using test::bytesFromHex;

namespace {

TEST(ReportTemplate, CombinesWithinOneReportAndClearsAllButTheId)
{
    struct Row {
        const char *first, *second, *combined;
    };
    for (const Row& row : {
             Row{"03 04 00", "03 01 00", "03 05 00"},
             Row{"03 04 00", "04 01 00", "03 04 00"},
             Row{"03 04", "03 01 80", "03 05"},
             Row{"03 04 00", "03 01", "03 05 00"},
             Row{"03 04 00", "", "03 04 00"},
             Row{"", "03 01", ""},
         })
        EXPECT_EQ(KX::Combined(bytesFromHex(row.first), bytesFromHex(row.second)),
            bytesFromHex(row.combined));
    EXPECT_EQ(KX::Cleared(bytesFromHex("03 05 ff")), bytesFromHex("03 00 00"));
    EXPECT_EQ(KX::Cleared(bytesFromHex("03")), bytesFromHex("03"));
}

TEST(ReportTemplate, MatchesByInclusionAndExactLength)
{
    struct Row {
        const char *mask, *report;
        bool matches;
    };
    for (const Row& row : {
             Row{"03 01 00", "03 01 00", true},
             Row{"03 01 00", "03 ff ff", true},
             Row{"01 01", "03 01", true}, // the report id, too
             Row{"03 01 00", "01 01 00", false},
             Row{"03 01 00", "03 02 00", false},
             Row{"03 01 00", "03 01", false},
             Row{"03 01 00", "03 01 00 00", false},
             Row{"", "", true},
             Row{"", "00", false},
         })
        EXPECT_EQ(KX::Matches(bytesFromHex(row.mask), bytesFromHex(row.report)), row.matches)
            << row.mask << " / " << row.report;
}

TEST(RingAnswer, DependsOnWhetherTheRingCameDuringACall)
{
    KX::TelephonyControls controls;
    controls.hookSwitchMask = bytesFromHex("03 01");
    controls.lineBusyMask = bytesFromHex("03 02");
    controls.flashMask = bytesFromHex("03 10");
    controls.hasHookSwitch = controls.hasLineBusy = controls.hasFlash = true;

    using KX::RingAnswer;
    struct Row {
        const char* report;
        RingAnswer fromIdle, duringCall;
    };
    for (const Row& row : {
             Row{"03 00", RingAnswer::Reject, RingAnswer::Ignore},
             Row{"03 01", RingAnswer::Answer, RingAnswer::Ignore},
             Row{"03 02", RingAnswer::Reject, RingAnswer::Ignore},
             Row{"03 10", RingAnswer::Reject, RingAnswer::Ignore},
             Row{"03 03", RingAnswer::Answer, RingAnswer::RefuseWaiting},
             Row{"03 11", RingAnswer::Answer, RingAnswer::Answer},
             Row{"03 13", RingAnswer::Answer, RingAnswer::Answer},
             Row{"01 01 00", RingAnswer::Reject, RingAnswer::Ignore},
         }) {
        SCOPED_TRACE(row.report);
        EXPECT_EQ(KX::AnswerTo(controls, false, bytesFromHex(row.report)), row.fromIdle);
        EXPECT_EQ(KX::AnswerTo(controls, true, bytesFromHex(row.report)), row.duringCall);
    }
    controls.hasFlash = controls.hasLineBusy = false;
    EXPECT_EQ(KX::AnswerTo(controls, true, bytesFromHex("03 13")), RingAnswer::Ignore);
    controls.hasHookSwitch = false;
    EXPECT_EQ(KX::AnswerTo(controls, false, bytesFromHex("03 01")), RingAnswer::Reject);
}

} // namespace
