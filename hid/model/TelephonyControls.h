// The telephony controls of one device as report templates and input masks. Pure.
#pragma once

#include "hid/model/Bytes.h"

namespace KX {

class Root;

struct TelephonyControls {
    // Output templates.
    Bytes muteLedReport;
    bool hasMuteLed = false; // only together with an Off-Hook LED, as both are lit in a call
    Bytes offHookLedReport;
    bool hasOffHookLed = false;

    // Input masks. A device without report ids sends reports that do not begin with an id, so its
    // masks do not either.
    Bytes phoneMuteMask;
    bool hasPhoneMute = false;
    Bytes hookSwitchMask;
    bool hasHookSwitch = false;
    Bytes lineBusyMask; // Line Busy Tone is the device's reject button
    bool hasLineBusy = false;
    Bytes flashMask;
    bool hasFlash = false;

    // Output templates.
    Bytes ringLedReport;
    bool hasRingLed = false;
    Bytes holdLedReport;
    bool hasHoldLed = false;

    // Finds the controls in the Headset collection of the Telephony page. They are compared by
    // usage id alone, whatever their page, because the collection also contains LED usages.
    // Controls that are not found keep their defaults. Throws std::bad_alloc.
    [[nodiscard]] static TelephonyControls FromDescriptor(const Root& root);
};

} // namespace KX
