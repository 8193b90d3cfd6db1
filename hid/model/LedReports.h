// The output reports that set a telephony device's LEDs, complete and ready to send. Pure.
#pragma once

#include "hid/model/Bytes.h"

namespace KX {

struct TelephonyControls;

// All reports are built once, so that setting an LED later needs no memory. A report is empty if
// the device lacks the controls for it.
struct LedReports {
    Bytes ringOn;
    Bytes ringAndOffHookOn; // a call waits during a call
    Bytes ringOff;
    Bytes offHookOn;
    Bytes offHookOff;
    Bytes muteOn;  // the Off-Hook LED stays on
    Bytes muteOff; // the same
    Bytes holdOff;

    // Throws std::bad_alloc.
    [[nodiscard]] static LedReports FromControls(const TelephonyControls& controls);
};

} // namespace KX
