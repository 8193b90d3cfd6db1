#include "tools/ctl/check/tests/conformance_tests.h"

namespace ctl {
namespace {

constexpr ConformanceTest kTests[] = {
    {"opens with its LEDs off", opensWithLedsOff},
    {"every telephony control of the descriptor can be used", controlsAreUsable},
    {"sends nothing by itself while idle", silentWhileIdle},
    {"the ring LED is on while a call rings", ringLedOn},
    {"sends nothing by itself while a call rings", silentWhileRinging},
    {"the LEDs are off after a rejected call", ledsOffAfterReject},
    {"the off-hook LED is on during a call", offHookLedOn},
    {"sends nothing by itself during a call", silentDuringCall},
    {"the mute LED is on when the host mutes, and there is no event back", muteLedOn},
    {"the mute LED is off when the host unmutes, and there is no event back", muteLedOff},
    {"the ring LED is on while a second call rings", waitingCallLeds},
    {"the off-hook LED stays on after the second call is rejected", ledsAfterWaitingCall},
    {"the LEDs are off after the meeting", ledsOffAtTheEnd},
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
