#include "host/CKXHostHidImp.h"

#include "base/src/trace.h"
#include "hid/CKXHostStackStdHid.h"

#include <cassert>
#include <new>
#include <sstream>

namespace KX {

namespace {

// A device key: "0xVVVV-HID-0xPPPP#", which a name may follow.
constexpr size_t kVendorPosition = 2;
constexpr size_t kProductPosition = 13;
constexpr size_t kIdDigits = 4;
constexpr size_t kMinKeyLength = 18;

// Returns the number that an input stream reads from the digits, 0 when there is none.
uint16_t ParseId(const std::string& key, size_t position)
{
    std::istringstream digits(key.substr(position, kIdDigits));
    unsigned id = 0;
    digits >> std::hex >> id;
    return static_cast<uint16_t>(id);
}

bool MuteValue(uint32_t stackState, uint8_t* value)
{
    switch (stackState) {
    case kMuted:
        *value = 1;
        return true;
    case kUnmuted:
        *value = 0;
        return true;
    default:
        return false;
    }
}

// The two sides number the call states in opposite orders. Both numberings are contract.
bool CallValue(uint32_t stackState, uint8_t* value)
{
    switch (stackState) {
    case kCallNeverSet:
        *value = KXCallUnknown;
        return true;
    case kCallIdle:
        *value = KXCallIdle;
        return true;
    case kCallActive:
        *value = KXCallActive;
        return true;
    case kCallRinging:
        *value = KXCallRinging;
        return true;
    default:
        return false;
    }
}

} // namespace

CKXHostHidImp::CKXHostHidImp(IKXHostCallback* hostCallback)
    : callback(hostCallback)
{
    assert(callback);
}

CKXHostHidImp::~CKXHostHidImp()
{
    stack.reset(); // first, as its reader thread may be using the callback
    callback = nullptr;
}

int CKXHostHidImp::GetDeviceId(uint16_t* vendor, uint16_t* product)
{
    if (vendor)
        *vendor = vendorId;
    if (product)
        *product = productId;
    return 0;
}

void CKXHostHidImp::SelectDevice(const char* key)
{
    if (!key || deviceKey == key)
        return;
    stack.reset();
    try {
        deviceKey = key;
        if (deviceKey.size() >= kMinKeyLength)
            stack = OpenStack();
    } catch (const std::bad_alloc&) {
        TraceThis(this, kTraceError, "no memory to select %s", key);
    }
    if (!stack)
        deviceKey.clear(); // so that the same key can be tried again
}

// Returns a stack also when the device could not be opened. Throws std::bad_alloc.
std::unique_ptr<IHostHidStack> CKXHostHidImp::OpenStack()
{
    vendorId = ParseId(deviceKey, kVendorPosition);
    productId = ParseId(deviceKey, kProductPosition);
    auto opened = std::make_unique<CKXHostStackStdHid>();
    const int isOpen = opened->Open(this, vendorId, productId);
    if (opened->RanOutOfMemory())
        throw std::bad_alloc();
    TraceThis(this, kTraceInfo, "selected %s: %s", deviceKey.c_str(),
        isOpen ? "open" : "could not be opened");
    return opened;
}

void CKXHostHidImp::SetState(KXState state, const uint8_t* value)
{
    if (!stack || !value)
        return;
    TraceThis(this, kTraceDebug, "state %u set to %u", static_cast<unsigned>(state), *value);
    if (state == KXState::Call)
        SetCallState(*value);
    else if (state == KXState::Mute)
        *value ? stack->Mute() : stack->Unmute();
}

void CKXHostHidImp::SetCallState(uint8_t value)
{
    switch (value) {
    case KXCallRinging:
        stack->Ring();
        break;
    case KXCallActive:
        stack->OffHook();
        break;
    case KXCallIdle:
        stack->HangUp();
        break;
    default:
        break;
    }
}

bool CKXHostHidImp::GetState(KXState state, uint8_t* value)
{
    if (!stack || !value)
        return false;
    switch (state) {
    case KXState::Mute:
        return MuteValue(stack->GetMuteState(), value);
    case KXState::Call:
        return CallValue(stack->GetCallState(), value);
    }
    return false;
}

int CKXHostHidImp::IsSupported()
{
    return stack ? stack->QuerySupport() : 0;
}

void CKXHostHidImp::ResetTrace()
{
    if (ITraceObserver* observer = traceSettings.observer)
        observer->Reset();
}

void CKXHostHidImp::OnDeviceMute()
{
    ReportMute(1);
}

void CKXHostHidImp::OnDeviceUnmute()
{
    ReportMute(0);
}

void CKXHostHidImp::ReportMute(uint8_t muted)
{
    if (callback)
        callback->OnState(KXState::Mute, &muted);
}

void CKXHostHidImp::OnDeviceOffHook()
{
    if (callback)
        callback->OnCommand(KXCommand::Accept, nullptr);
}

void CKXHostHidImp::OnDeviceHangUp()
{
    if (callback)
        callback->OnCommand(KXCommand::Reject, nullptr);
}

} // namespace KX
