// The one implementation of IKXHost: maps states to operations of the HID stack, and the stack's
// events to the callback. It keeps no state of its own beyond the device's key and ids; what the
// window's buttons mean is the application's business, what the lamps do is the stack's.
#pragma once

#include "hid/IHostHidStack.h"
#include "hid/IMivoAudioSdkSink.h"
#include "host/IKXHost.h"

#include <memory>
#include <string>

namespace KX {

// The IKXHost operations belong to the application's thread, the sink's to the stack's reader
// thread, on which the callback is called without a lock or a queue. A stack is destroyed only
// when its reader has stopped, so no event of an old device comes after SelectDevice().
class CKXHostHidImp final : public IKXHost, public IMivoAudioSdkSink, private IHostStackSink {
public:
    CKXHostHidImp() = default;
    CKXHostHidImp(const CKXHostHidImp&) = delete;
    CKXHostHidImp& operator=(const CKXHostHidImp&) = delete;

    // Stores the callback (not owned, not null) and fills the default device filter sets.
    void Init(IKXHostCallback* hostCallback);

    int GetDeviceId(uint16_t* vendor, uint16_t* product) override;
    void SelectDevice(const char* key) override;
    int Reserved1() override { return 0; }
    void Reserved2() override { }
    void SetState(KXState state, const uint8_t* value) override;
    [[nodiscard]] bool GetState(KXState state, uint8_t* value) override;
    int IsSupported() override;
    void ResetTrace() override;

private:
    void OnDeviceMute() override;
    void OnDeviceUnmute() override;
    void OnDeviceOffHook() override;
    void OnDeviceHangUp() override;

public:
    void OnAudioSdkEvent() override { }
    virtual ~CKXHostHidImp();

private:
    void OpenStack();
    void ReportMute(uint8_t muted);
    void SetCallState(uint8_t value);

    uint16_t vendorId = 0;
    uint16_t productId = 0;
    IKXHostCallback* callback = nullptr;
    std::string deviceKey;
    std::unique_ptr<IHostHidStack> stack; // null while no device is selected
};

} // namespace KX
