// The tests of kelprobectl check.
#pragma once

#include "tools/ctl/check/tester.h"

#include <span>

namespace ctl {

struct ConformanceTest {
    const char* name; // what a right device does
    Outcome (*run)(Tester& tester);
};

// In the order in which they run. The first looks at the opening of the device, which the tester
// has done. The second to last groups look at all presses, so they come after the presses.
[[nodiscard]] std::span<const ConformanceTest> conformanceTests();

// lamp_tests.cpp
Outcome opensWithLedsOff(Tester& tester);
Outcome controlsAreUsable(Tester& tester);
Outcome ringLedOn(Tester& tester);
Outcome ledsOffAfterReject(Tester& tester);
Outcome offHookLedOn(Tester& tester);
Outcome muteLedOn(Tester& tester);
Outcome muteLedOff(Tester& tester);
Outcome waitingCallLeds(Tester& tester);
Outcome ledsAfterWaitingCall(Tester& tester);
Outcome ledsOffAtTheEnd(Tester& tester);

// silence_tests.cpp
Outcome silentWhileIdle(Tester& tester);
Outcome silentWhileRinging(Tester& tester);
Outcome silentDuringCall(Tester& tester);

// press_tests.cpp
Outcome hookAnswers(Tester& tester);
Outcome buttonRejects(Tester& tester);
Outcome muteButtonMutes(Tester& tester);
Outcome muteButtonUnmutes(Tester& tester);
Outcome flashAnswersWaitingCall(Tester& tester);
Outcome busyRefusesWaitingCall(Tester& tester);
Outcome pressWhileIdle(Tester& tester);

// report_tests.cpp
Outcome reportLengths(Tester& tester);
Outcome pressesReportedOnce(Tester& tester);
Outcome pressToEventTime(Tester& tester);
Outcome worksAfterReplug(Tester& tester);

} // namespace ctl
