#include "tools/ctl/check/tests/conformance_tests.h"

namespace ctl {
namespace {

constexpr ConformanceTest kTests[] = {
    {"takes the LED reports when it is opened", openingTaken},
    {"every telephony control of the descriptor can be used", controlsAreUsable},
    {"sends nothing by itself while idle", silentWhileIdle},
    {"takes the report that switches the ring LED on", ringTaken},
    {"sends nothing by itself while a call rings", silentWhileRinging},
    {"takes the LED reports of a rejected call", rejectTaken},
    {"takes the LED reports of an answered call", pickUpTaken},
    {"sends nothing by itself during a call", silentDuringCall},
    {"takes the report that switches the mute LED on, and sends no event back", muteTaken},
    {"takes the report that switches the mute LED off, and sends no event back", unmuteTaken},
    {"takes the LED reports of a second call", waitingCallTaken},
    {"takes the LED reports of a rejected second call", waitingRejectTaken},
    {"takes the LED reports of the end of a meeting", endTaken},
    {"the ring LED is seen on while a call rings", ringLedSeen},
    {"the off-hook LED is seen on during a call", offHookLedSeen},
    {"the mute LED is seen on while the host mutes", muteLedSeen},
    {"the ring LED is seen on while a second call rings", waitingCallSeen},
    {"no LED is seen on after the meeting", noLedSeen},
    {"the hook switch answers a call", hookAnswers},
    {"a button rejects a call", buttonRejects},
    {"the mute button mutes", muteButtonMutes},
    {"the mute button unmutes", muteButtonUnmutes},
    {"flash answers a second call", flashAnswersWaitingCall},
    {"line busy refuses a second call", busyRefusesWaitingCall},
    {"a press while nothing rings changes nothing", pressWhileIdle},
    {"input reports have the length that the descriptor gives", reportLengths},
    {"one press is reported once", pressesReportedOnce},
    {"a press becomes an event within 1 s", pressToEventTime},
    {"works again after it was unplugged and plugged in", worksAfterReplug},
};

} // namespace

std::span<const ConformanceTest> conformanceTests()
{
    return kTests;
}

} // namespace ctl
