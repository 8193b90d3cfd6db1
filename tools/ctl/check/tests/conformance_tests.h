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
// has done. The tests of all reports and presses come after the presses.
[[nodiscard]] std::span<const ConformanceTest> conformanceTests();

// lamp_tests.cpp
Outcome openingTaken(Tester& tester);
Outcome controlsAreUsable(Tester& tester);
Outcome ringTaken(Tester& tester);
Outcome rejectTaken(Tester& tester);
Outcome pickUpTaken(Tester& tester);
Outcome muteTaken(Tester& tester);
Outcome unmuteTaken(Tester& tester);
Outcome waitingCallTaken(Tester& tester);
Outcome waitingRejectTaken(Tester& tester);
Outcome endTaken(Tester& tester);

// seen_tests.cpp
Outcome ringLedSeen(Tester& tester);
Outcome offHookLedSeen(Tester& tester);
Outcome muteLedSeen(Tester& tester);
Outcome waitingCallSeen(Tester& tester);
Outcome noLedSeen(Tester& tester);

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

// replug_tests.cpp
Outcome worksAfterReplug(Tester& tester);

} // namespace ctl
