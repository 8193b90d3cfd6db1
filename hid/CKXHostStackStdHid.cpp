// What the host asks for; CKXHostStackStdHidReader.cpp has what the device says.
#include "hid/CKXHostStackStdHid.h"

#include "base/src/trace.h"
#include "hid/DescriptorCache.h"
#include "hid/model/ReportTemplate.h"

#include <mutex>

namespace KX {

CKXHostStackStdHid::~CKXHostStackStdHid()
{
    CKXHostStackStdHid::Close();
    readerThread.join();
}

int CKXHostStackStdHid::Open(IHostStackSink* eventSink, uint16_t vendor, uint16_t product)
{
    sink = eventSink;
    vendorId = vendor;
    productId = product;

    const Root* known = DescriptorCache::Instance().Find(vendorId, productId);
    if (!(known ? OpenKnown(*known) : OpenNew())) {
        TraceThis(this, kTraceError, "cannot open %04x:%04x", vendorId, productId);
        return 0;
    }
    controls = TelephonyControls::FromDescriptor(*descriptorRoot);

    {
        const std::lock_guard guard(lock);
        stopRequested = false;
    }
    if (!readerThread.start(ReaderRoutine, this)) {
        TraceThis(this, kTraceError, "no reader thread for %04x:%04x", vendorId, productId);
        GiveUp();
        return 0;
    }
    Unmute();
    HangUp();
    TraceThis(this, kTraceInfo, "opened %04x:%04x", vendorId, productId);
    return 1;
}

bool CKXHostStackStdHid::OpenKnown(const Root& tree)
{
    device = hid_open(vendorId, productId, nullptr, DescriptorFetch::Off);
    descriptorRoot = &tree;
    return device != nullptr;
}

// The tree enters the cache first and stays whatever follows: a device that failed once is not
// asked again, it opens with the empty tree and without controls.
bool CKXHostStackStdHid::OpenNew()
{
    Root& tree = DescriptorCache::Instance().Add(vendorId, productId);
    descriptorRoot = &tree;
    device = hid_open(vendorId, productId, nullptr, DescriptorFetch::On);
    if (!device)
        return false;
    Bytes descriptor;
    if (!hid_get_report_descriptor_copy(device.get(), descriptor)) {
        GiveUp();
        return false;
    }
    tree.Parse(descriptor);
    return true;
}

void CKXHostStackStdHid::GiveUp()
{
    device.reset();
    hid_exit();
}

void CKXHostStackStdHid::Close()
{
    {
        const std::lock_guard guard(lock);
        stopRequested = true;
    }
    readerThread.join();
    device.reset();
    hid_exit();
}

void CKXHostStackStdHid::Mute()
{
    if (!controls.hasMuteLed || callState != kCallActive)
        return;
    muteState = kMuted;
    Send(Combined(controls.muteLedReport, controls.offHookLedReport));
}

void CKXHostStackStdHid::Unmute()
{
    if (!controls.hasMuteLed || callState != kCallActive)
        return;
    muteState = kUnmuted;
    Send(ShareReport(controls.muteLedReport, controls.offHookLedReport)
            ? controls.offHookLedReport
            : Cleared(controls.muteLedReport));
}

void CKXHostStackStdHid::HangUp()
{
    callState = kCallIdle;
    hookState = kOnHook;
    SendRingOff();
    SendOffHookOff();
    SendHoldOff();
}

void CKXHostStackStdHid::OffHook()
{
    callState = kCallActive;
    hookState = kOffHook;
    SendRingOff();
    SendOffHookOn();
}

void CKXHostStackStdHid::Ring()
{
    if (!controls.hasRingLed)
        return;
    const uint32_t before = callState;
    if (before == kCallIdle)
        Send(controls.ringLedReport);
    else if (before == kCallActive && controls.hasOffHookLed)
        Send(Combined(controls.ringLedReport, controls.offHookLedReport));
    callState = kCallRinging; // also when there was nothing to send
}

void CKXHostStackStdHid::SendRingOff()
{
    if (controls.hasRingLed)
        Send(Cleared(controls.ringLedReport));
}

void CKXHostStackStdHid::SendOffHookOff()
{
    if (controls.hasOffHookLed)
        Send(Cleared(controls.offHookLedReport));
}

void CKXHostStackStdHid::SendOffHookOn()
{
    if (controls.hasOffHookLed)
        Send(controls.offHookLedReport);
}

void CKXHostStackStdHid::SendHoldOff()
{
    if (controls.hasHoldLed)
        Send(Cleared(controls.holdLedReport));
}

// A lost report shows on the device; there is nobody to tell.
void CKXHostStackStdHid::Send(const Bytes& report)
{
    if (device)
        (void)device->Write(report);
}

} // namespace KX
