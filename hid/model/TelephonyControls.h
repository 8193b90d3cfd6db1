// The telephony controls of one device, as the templates and masks by which the stack drives and
// hears it. Pure.
#pragma once

#include "hid/model/Bytes.h"

#include <span>

namespace KX {

class Root;

struct TelephonyControls {
    // Output templates.
    Bytes muteLedReport;
    bool hasMuteLed = false; // only beside an Off-Hook LED: the two are lit together
    Bytes offHookLedReport;
    bool hasOffHookLed = false;

    // Input masks; without the leading 0 when the device uses no report ids, as its reports come.
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

    // Looks the controls up in the Telephony page's Headset collection, by their usage ids alone,
    // since LED usages stand there beside telephony usages. What is not found stays absent.
    static TelephonyControls FromDescriptor(const Root& root);
};

// What an input report says while the device rings.
enum class RingAnswer {
    Ignore,
    Answer,
    Reject,        // the ringing call; there is no other
    RefuseWaiting, // the waiting call; the one before it goes on
};

// `wasOffHook`: the ring came during a call.
//
// From idle, any report without the hook switch's bit is a reject, whatever control sent it: a
// device that reports a release first would otherwise ring on. During a call the hook switch is
// off already, so only flash or busy beside it decide.
[[nodiscard]] RingAnswer AnswerTo(
    const TelephonyControls& controls, bool wasOffHook, std::span<const uint8_t> report);

} // namespace KX
