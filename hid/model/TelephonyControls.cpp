#include "hid/model/TelephonyControls.h"

#include "hid/model/Root.h"

namespace KX {

namespace {

// HID Usage Tables 1.12, sections 14 (Telephony page) and 11 (LED page).
constexpr uint32_t kTelephonyPage = 0x0B;
constexpr uint32_t kHeadset = 0x05;
constexpr uint32_t kHookSwitch = 0x20;
constexpr uint32_t kFlash = 0x21;
constexpr uint32_t kPhoneMute = 0x2F;
constexpr uint32_t kLineBusyTone = 0x97;
constexpr uint32_t kMuteLed = 0x09;
constexpr uint32_t kOffHookLed = 0x17;
constexpr uint32_t kRingLed = 0x18;
constexpr uint32_t kHoldLed = 0x20;

bool FindTemplate(const Root& root, uint32_t usage, Bytes& report)
{
    return root.FindOutput(kTelephonyPage, kHeadset, usage, report);
}

bool FindMask(const Root& root, uint32_t usage, Bytes& mask)
{
    if (!root.FindInput(kTelephonyPage, kHeadset, usage, mask))
        return false;
    if (mask.size() >= 2 && mask.front() == 0)
        mask.erase(mask.begin());
    return true;
}

} // namespace

TelephonyControls TelephonyControls::FromDescriptor(const Root& root)
{
    TelephonyControls found;
    found.hasOffHookLed = FindTemplate(root, kOffHookLed, found.offHookLedReport);
    found.hasMuteLed = FindTemplate(root, kMuteLed, found.muteLedReport) && found.hasOffHookLed;
    found.hasPhoneMute = FindMask(root, kPhoneMute, found.phoneMuteMask);
    found.hasHookSwitch = FindMask(root, kHookSwitch, found.hookSwitchMask);
    found.hasLineBusy = FindMask(root, kLineBusyTone, found.lineBusyMask);
    found.hasFlash = FindMask(root, kFlash, found.flashMask);
    found.hasRingLed = FindTemplate(root, kRingLed, found.ringLedReport);
    found.hasHoldLed = FindTemplate(root, kHoldLed, found.holdLedReport);
    return found;
}

} // namespace KX
