#include "hid/model/TelephonyStateMachine.h"

#include "hid/model/ReportTemplate.h"

#include <utility>

namespace KX {

TelephonyStateMachine::TelephonyStateMachine(Output& output)
    : output_(output)
{
}

void TelephonyStateMachine::SetControls(TelephonyControls controls)
{
    leds_ = LedReports::FromControls(controls);
    controls_ = std::move(controls);
}

void TelephonyStateMachine::Ring()
{
    if (!controls_.hasRingLed)
        return;
    const uint32_t before = callState_;
    if (before == kCallIdle)
        Send(leds_.ringOn);
    else if (before == kCallActive)
        Send(leds_.ringAndOffHookOn);
    callState_ = kCallRinging; // also when nothing was sent
}

void TelephonyStateMachine::OffHook()
{
    callState_ = kCallActive;
    hookState_ = kOffHook;
    Send(leds_.ringOff);
    Send(leds_.offHookOn);
}

void TelephonyStateMachine::HangUp()
{
    callState_ = kCallIdle;
    hookState_ = kOnHook;
    Send(leds_.ringOff);
    Send(leds_.offHookOff);
    Send(leds_.holdOff);
}

void TelephonyStateMachine::Mute()
{
    if (!controls_.hasMuteLed || callState_ != kCallActive)
        return;
    muteState_ = kMuted;
    Send(leds_.muteOn);
}

void TelephonyStateMachine::Unmute()
{
    if (!controls_.hasMuteLed || callState_ != kCallActive)
        return;
    muteState_ = kUnmuted;
    Send(leds_.muteOff);
}

// During a call only the mute button has an effect: the hook switch does not end a call.
void TelephonyStateMachine::HandleReport(std::span<const uint8_t> report)
{
    if (callState_ == kCallActive) {
        if (!controls_.hasPhoneMute)
            return;
        if (Matches(controls_.phoneMuteMask, report))
            ToggleMute();
    }
    if (callState_ == kCallRinging) { // read again: the host may have called Ring() meanwhile
        if (hookState_ == kOffHook)
            HandleWaitingCall(report);
        else
            HandleIncomingCall(report);
    }
}

void TelephonyStateMachine::ToggleMute()
{
    if (muteState_ == kMuted) {
        output_.Notify(Event::Unmute);
        Unmute();
    } else {
        output_.Notify(Event::Mute);
        Mute();
    }
}

// Any report without the hook switch's bit rejects the call, whichever control sent it. This is
// deliberate: devices reject calls with different controls.
void TelephonyStateMachine::HandleIncomingCall(std::span<const uint8_t> report)
{
    if (controls_.hasHookSwitch && Matches(controls_.hookSwitchMask, report))
        ContinueCall(Event::OffHook);
    else
        RejectCall();
}

// The device is already off-hook, so flash or line busy together with the hook switch decides.
void TelephonyStateMachine::HandleWaitingCall(std::span<const uint8_t> report)
{
    if (!controls_.hasHookSwitch || !Matches(controls_.hookSwitchMask, report))
        return;
    if (controls_.hasFlash && Matches(controls_.flashMask, report))
        ContinueCall(Event::OffHook);
    else if (controls_.hasLineBusy && Matches(controls_.lineBusyMask, report))
        ContinueCall(Event::HangUp);
}

// After an answer, and after a waiting call was refused: then the earlier call continues.
void TelephonyStateMachine::ContinueCall(Event event)
{
    callState_ = kCallActive;
    hookState_ = kOffHook;
    output_.Notify(event);
    Send(leds_.ringOff);
    Send(leds_.offHookOn);
}

void TelephonyStateMachine::RejectCall()
{
    callState_ = kCallIdle;
    hookState_ = kOnHook;
    output_.Notify(Event::HangUp);
    Send(leds_.ringOff);
    Send(leds_.offHookOff);
}

void TelephonyStateMachine::Send(const Bytes& report)
{
    if (!report.empty())
        output_.Send(report);
}

} // namespace KX
