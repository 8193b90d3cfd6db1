// The sections of a description for people.
#pragma once

#include "tools/ctl/explain/description.h"

namespace ctl {

// Print on standard output. Each section begins with its heading. Throw Failure if standard output
// cannot be written.
void printItems(const Description& description);
void printReports(const Description& description);
void printProblems(const Description& description); // nothing if there are none
void printControls(const Description& description);
void printMeeting(const Description& description);

} // namespace ctl
