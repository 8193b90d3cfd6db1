// Input reports against any masks in any state. Input: a byte of flags and hook position, four
// masks and a report, each a length (of at most 8) and its bytes; then a script of operations and
// further reports, which a stack without a device goes through.
#include "hid/CKXHostStackStdHid.h"
#include "hid/model/ReportTemplate.h"

#include <algorithm>
#include <cstdlib>

namespace {

class Input {
public:
    explicit Input(std::span<const uint8_t> bytes)
        : bytes_(bytes)
    {
    }

    [[nodiscard]] bool Empty() const { return bytes_.empty(); }

    uint8_t Byte()
    {
        if (bytes_.empty())
            return 0;
        const uint8_t byte = bytes_.front();
        bytes_ = bytes_.subspan(1);
        return byte;
    }

    KX::Bytes String()
    {
        const size_t wanted = Byte() % 9;
        const size_t length = std::min(wanted, bytes_.size());
        const auto taken = bytes_.first(length);
        bytes_ = bytes_.subspan(length);
        return {taken.begin(), taken.end()};
    }

private:
    std::span<const uint8_t> bytes_;
};

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

// A stack on which reports are tried without a device to come from.
class TriedStack final : public KX::CKXHostStackStdHid {
public:
    TriedStack(const KX::TelephonyControls& tried, KX::IHostStackSink& events)
    {
        controls = tried;
        sink = &events;
    }
    using KX::CKXHostStackStdHid::HandleReport;
};

// Each event must fit the state that the stack is in when it tells.
class CheckingSink final : public KX::IHostStackSink {
public:
    void OnDeviceMute() override { Require(stack->GetMuteState() != KX::kMuted); }
    void OnDeviceUnmute() override { Require(stack->GetMuteState() == KX::kMuted); }
    void OnDeviceOffHook() override { Require(stack->GetCallState() == KX::kCallActive); }
    void OnDeviceHangUp() override { Require(stack->GetCallState() != KX::kCallRinging); }

    KX::IHostHidStack* stack = nullptr;
};

void Perform(KX::IHostHidStack& stack, uint8_t operation)
{
    switch (operation) {
    case 0:
        stack.Ring();
        break;
    case 1:
        stack.OffHook();
        break;
    case 2:
        stack.HangUp();
        break;
    case 3:
        stack.Mute();
        break;
    default:
        stack.Unmute();
        break;
    }
}

void TryScript(const KX::TelephonyControls& controls, Input& input)
{
    CheckingSink sink;
    TriedStack stack(controls, sink);
    sink.stack = &stack;
    while (!input.Empty()) {
        constexpr uint8_t kinds = 8;
        const uint8_t kind = input.Byte() % kinds;
        const uint32_t call = stack.GetCallState();
        const uint32_t mute = stack.GetMuteState();
        if (kind < 5)
            Perform(stack, kind);
        else
            stack.HandleReport(input.String());
        Require(stack.GetCallState() <= KX::kCallRinging && stack.GetMuteState() <= KX::kUnmuted);
        Require(call == KX::kCallActive || stack.GetMuteState() == mute);
        Require(kind < 5 || stack.GetCallState() == call || call == KX::kCallRinging);
    }
}

// Cleared and combined reports keep their length and id, and a report matches itself.
void CheckTemplates(const KX::Bytes& first, const KX::Bytes& second)
{
    const KX::Bytes cleared = KX::Cleared(first);
    const KX::Bytes combined = KX::Combined(first, second);
    Require(cleared.size() == first.size() && combined.size() == first.size());
    Require(first.empty() || (cleared[0] == first[0] && combined[0] == first[0]));
    Require(KX::Matches(first, first) && KX::Matches(first, combined));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input({data, size});
    const uint8_t flags = input.Byte();
    KX::TelephonyControls controls;
    controls.hasHookSwitch = flags & 1;
    controls.hasFlash = flags & 2;
    controls.hasLineBusy = flags & 4;
    const bool wasOffHook = flags & 8;
    controls.hookSwitchMask = input.String();
    controls.flashMask = input.String();
    controls.lineBusyMask = input.String();
    const KX::Bytes other = input.String();
    const KX::Bytes report = input.String();

    const KX::RingAnswer answer = KX::AnswerTo(controls, wasOffHook, report);
    Require(wasOffHook
        || (answer != KX::RingAnswer::Ignore && answer != KX::RingAnswer::RefuseWaiting));
    Require(!wasOffHook || answer != KX::RingAnswer::Reject);
    Require(controls.hasHookSwitch || answer != KX::RingAnswer::Answer);
    CheckTemplates(controls.hookSwitchMask, other);
    CheckTemplates(report, other);

    controls.hasRingLed = flags & 16;
    controls.hasMuteLed = controls.hasOffHookLed = flags & 32;
    controls.hasPhoneMute = flags & 64;
    controls.ringLedReport = other;
    controls.muteLedReport = report;
    controls.offHookLedReport = controls.lineBusyMask;
    controls.phoneMuteMask = controls.flashMask;
    TryScript(controls, input);
    return 0;
}
