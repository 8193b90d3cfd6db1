// Input reports against any masks in any state. Input: a byte of flags and hook position, four
// masks and a report, each a length (of at most 8) and its bytes.
#include "ReportTemplate.h"
#include "TelephonyControls.h"

#include <algorithm>
#include <cstdlib>

namespace {

class Input {
public:
    explicit Input(std::span<const uint8_t> bytes)
        : bytes_(bytes)
    {
    }

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
    return 0;
}
